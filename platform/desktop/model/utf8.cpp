#include "desktop/model/utf8.h"

#include <glib.h>

#include <array>

namespace platform::desktop {

void appendUtf8(std::string& text, char32_t character) {
  std::array<char, 6> bytes;
  text.append(bytes.data(), static_cast<std::size_t>(g_unichar_to_utf8(character, bytes.data())));
}

std::string utf8From(const char* encoding, std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    gsize read = 0;
    gsize written = 0;
    g_autofree char* converted =
        g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8", encoding, &read, &written, nullptr);
    if (converted == nullptr && read > 0) {
      // GLib returns nothing when a later byte is wrong: the bytes before that one.
      converted = g_convert(bytes.data(), static_cast<gssize>(read), "UTF-8", encoding, nullptr, &written, nullptr);
    }
    if (converted != nullptr && read > 0) {
      text.append(converted, written);
      bytes.remove_prefix(read);
      continue;
    }
    const auto byte = static_cast<unsigned char>(bytes.front());
    appendUtf8(text, byte < 0x80 ? byte : kReplacementCharacter);
    bytes.remove_prefix(1);
  }
  return text;
}

}  // namespace platform::desktop
