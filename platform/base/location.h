// A Location records where a task was posted from: the posting function's
// name, the source file and line, and the program counter of the posting
// code. Locations only point at static strings; copying one is cheap and it
// may be used on any thread.
#ifndef TESSEL_PLATFORM_BASE_LOCATION_H_
#define TESSEL_PLATFORM_BASE_LOCATION_H_

namespace tracked_objects {

class Location {
 public:
  // `function_name` and `file_name` must be string literals (or otherwise
  // outlive every copy of the location).
  Location(const char* function_name, const char* file_name, int line_number,
           const void* program_counter)
      : function_name_(function_name),
        file_name_(file_name),
        line_number_(line_number),
        program_counter_(program_counter) {}
  Location() : Location("Unknown", "Unknown", -1, nullptr) {}

  const char* function_name() const { return function_name_; }
  const char* file_name() const { return file_name_; }
  int line_number() const { return line_number_; }
  const void* program_counter() const { return program_counter_; }

 private:
  const char* function_name_;
  const char* file_name_;
  int line_number_;
  const void* program_counter_;
};

// The address the calling function returns to, which identifies the call site.
const void* GetProgramCounter();

}  // namespace tracked_objects

#define FROM_HERE                                                    \
  ::tracked_objects::Location(__func__, __FILE__, __LINE__,          \
                              ::tracked_objects::GetProgramCounter())

#endif  // TESSEL_PLATFORM_BASE_LOCATION_H_
