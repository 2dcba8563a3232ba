#include "desktop/script/script_text.h"

#include <iconv.h>

#include <array>
#include <cerrno>

#include "desktop/model/utf8.h"

namespace platform::desktop {
namespace {

struct Script {
  std::uint16_t code;
  const char* encoding;  ///< iconv's name
};

constexpr std::array<Script, 6> kScripts = {{
    {0, "MACINTOSH"},
    {1, "SHIFT_JIS"},
    {2, "BIG5"},
    {3, "EUC-KR"},
    {7, "MAC-CYRILLIC"},
    {25, "EUC-CN"},
}};

class Converter {
 public:
  explicit Converter(std::uint16_t script) {
    for (const Script& known : kScripts) {
      if (known.code == script) {
        handle_ = iconv_open("UTF-8", known.encoding);
        usable_ =
            handle_ != reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr): iconv's own failure value
      }
    }
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (usable_) {
      iconv_close(handle_);
    }
  }

  bool usable() const { return usable_; }

  /// Converts the well-formed beginning of `bytes` to the end of `text` and answers how many bytes that was.
  std::size_t convert(std::string_view bytes, std::string& text) {
    std::array<char, 512> buffer;
    char* input = const_cast<char*>(bytes.data());  // iconv does not write to its input
    std::size_t input_left = bytes.size();
    bool full = true;
    while (full) {
      char* output = buffer.data();
      std::size_t output_left = buffer.size();
      full =
          iconv(handle_, &input, &input_left, &output, &output_left) == static_cast<std::size_t>(-1) && errno == E2BIG;
      text.append(buffer.data(), buffer.size() - output_left);
    }
    return bytes.size() - input_left;
  }

 private:
  iconv_t handle_ = nullptr;
  bool usable_ = false;
};

}  // namespace

std::string utf8FromScript(std::uint16_t script, std::string_view bytes) {
  Converter converter(script);
  std::string text;
  while (!bytes.empty()) {
    if (converter.usable()) {
      bytes.remove_prefix(converter.convert(bytes, text));
    } else if (static_cast<unsigned char>(bytes.front()) < 0x80) {
      text.push_back(bytes.front());
      bytes.remove_prefix(1);
      continue;
    }
    if (!bytes.empty()) {
      appendUtf8(text, kReplacementCharacter);
      bytes.remove_prefix(1);
    }
  }
  return text;
}

}  // namespace platform::desktop
