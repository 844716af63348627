// Uses the installed library the way a host does: through the umbrella header
// and the exported interface only. One block per family; each block makes a
// call whose result is known independently, and main() reports the count of
// checks and exits non-zero if any failed.
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tessel_depends.h"

namespace {

int checks = 0;
int failures = 0;

void Check(bool ok, const char* what) {
  ++checks;
  if (!ok) {
    ++failures;
    std::printf("consumer: FAILED %s\n", what);
  }
}

// Keeps what the logger forwards.
class Sink : public tessel::ILogger {
 public:
  void log(const std::string& message, int level) override {
    last = message;
    last_level = level;
  }
  std::string last;
  int last_level = -1;
};

}  // namespace

int main() {
  // Logging
  {
    auto sink = std::make_shared<Sink>();
    tessel::Logger::sharedLogger()->set_inner_logger(sink);
    tessel::Logger::sharedLogger()->error("disk full");
    Check(sink->last == "disk full" && sink->last_level == 3, "Logger forwards to the sink");
  }

  // Semaphore
  {
    tessel::Semaphore semaphore;
    bool signalled = false;
    std::thread signaller([&] {
      signalled = true;
      semaphore.notify();
    });
    semaphore.wait();
    Check(signalled, "Semaphore wait returns after notify");
    signaller.join();
  }

  // Holder and injection
  {
    using Holder = tessel::Singleton<tessel::GlobalNativeImpHolder>;
    auto holder = Holder::sharedInstance(false);
    tessel::UtilEntrance::InjectPlatformImp(nullptr, nullptr, nullptr);
    Check(holder && !holder->thread_factory && !holder->main_thread,
          "InjectPlatformImp without implementations leaves the holder empty");
  }

  // Worker threads
  {
    tessel::GenericThreadFactory factory;
    auto worker = factory.CreateThread("consumer", tessel_gen::ThreadTypeWorker);
    int answer = 0;
    worker->DispatchSync([&answer] { answer = 42; });
    Check(answer == 42 && worker->name() == "consumer", "a worker runs a synchronous task");
  }

  // Dates: whole days between two counts, zone-independent
  {
    const tessel::DateTime start(86400);
    Check(tessel::DateTime(86400 * 31 + 3661).daysSince(start) == 30, "DateTime::daysSince");
  }

  // Text, URLs and identifiers
  {
    Check(tessel::StringUtils::url_encode("a b/") == "a%20b%2f", "StringUtils::url_encode");
  }

  // Encodings: UTF-8 to UTF-16
  {
    std::wstring wide;
    Check(tessel::StringUtilsWin::utf8ToUnicode("\xF0\x9F\x98\x80", wide) &&
              wide == std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)},
          "StringUtilsWin::utf8ToUnicode gives UTF-16");
  }

  // Files: a round trip through the temporary directory
  {
    const std::string path = tessel::FileUtils::tmpPath("", "") + "tessel-consumer-" +
                             std::to_string(std::random_device()()) + ".txt";
    tessel::FileUtils::writeFile("hello", 5, path);
    char* data = nullptr;
    const long long length = tessel::FileUtils::readFile(path, &data);
    Check(length == 5 && data != nullptr && std::memcmp(data, "hello", 5) == 0,
          "FileUtils::writeFile then readFile");
    delete[] data;
    std::remove(path.c_str());
  }

  // Translations: positional arguments
  {
    Check(I18N::I18nUtils::formatMatch("%d2 von %s1", "Ann", 3) == "3 von Ann",
          "I18nUtils::formatMatch");
  }

  // HTML entities
  {
    std::vector<char> out(32);
    Check(decode_html_entities_utf8(out.data(), "a &lt; b &eacute;") == 8 &&
              std::string(out.data()) == "a < b \xC3\xA9",
          "decode_html_entities_utf8");
  }

  // Pinyin
  {
    std::wstring words = {static_cast<wchar_t>(0x4E2D), static_cast<wchar_t>(0x56FD)};  // 中国
    Check(pinYinConvert(words) == "ZhongGuo", "pinYinConvert");
  }

  std::printf("consumer %s: %d checks, %d failed\n", TESSEL_DEPENDS_VERSION_STRING, checks,
              failures);
  return failures == 0 ? 0 : 1;
}
