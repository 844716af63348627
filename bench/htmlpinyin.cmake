# HTML entity decoding against a straightforward byte-by-byte decoder, and the
# pinyin converters' throughput and index build time.
tessel_add_benchmark(bench_htmlpinyin htmlpinyin_bench.cc)
