// SPDX-License-Identifier: MIT
// JSON and CSV pieces.
#include "console/OutputTexts.h"

#include <nlohmann/json.hpp>

#include "platform/Machine.h"

namespace quillmarsh {

namespace {

bool IsUtf8(std::string_view bytes) {
  // Every byte that is no UTF-8 turns into the replacement character, which differs from it.
  return ToUtf8(FromUtf8(bytes)) == bytes;
}

std::string Base64(std::string_view bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t triple = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      triple =
          (triple << 8U) | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      const bool isPadding = i + k > bytes.size();
      text += isPadding ? '=' : kDigits[(triple >> (18U - 6U * k)) & 63U];
    }
  }
  return text;
}

}  // namespace

std::string NativeOrShownPath(TextView path) {
  std::string native = TheMachine().Drives().NativePath(path);
  return native.empty() ? ToUtf8(path) : native;
}

std::string JsonText(const std::string& bytes) {
  return nlohmann::json(bytes).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string JsonPath(const std::string& key, const std::string& path) {
  std::string text = "\"" + key + "\":" + JsonText(path);
  if (!IsUtf8(path)) text += ",\"" + key + "Bytes\":\"" + Base64(path) + "\"";
  return text;
}

std::string CsvField(const std::string& bytes) {
  if (bytes.find_first_of(",\"\r\n") == std::string::npos) return bytes;
  std::string field = "\"";
  for (const char byte : bytes) {
    if (byte == '"') field += '"';
    field += byte;
  }
  return field + "\"";
}

}  // namespace quillmarsh
