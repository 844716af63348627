# The UTF-8 run encoder is checked directly against its portable form, which
# the library reaches only on processors without SSSE3.
target_link_libraries(test_encodings PRIVATE tessel_platform)
