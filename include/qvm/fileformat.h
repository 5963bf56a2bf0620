#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qvm/gzipistream.h"

/// What the two encodings of a saved environment agree on: their magics and the codes of their tokens.
namespace quvex {

/// The first bytes of a file tell its encoding; its name is never asked.
inline constexpr std::string_view kTextMagic = "<QVM01>";
inline constexpr std::string_view kBinaryMagic = "<QVB01>";

/// One unit of the stream. In a binary file the code is the record's tag.
enum class Token : std::uint8_t {
  EndOfFile = 0,
  OpenMap = 16,
  EndMap = 17,
  Property = 18,
  CachedProperty = 19,  ///< binary only
  Integer8 = 160,
  Integer16 = 161,
  Integer32 = 162,
  Integer64 = 163,  ///< every integer of a text file
  Double = 176,
  Nil = 192,
  False = 193,
  True = 194,
  String = 208,
  CachedString = 209,  ///< binary only
};

/// Tag of the binary record that defines the next entry of the string cache; it is no token.
inline constexpr std::uint8_t kStringDefinition = 1;

/// Takes as many bytes as the magic has and compares them.
[[nodiscard]] bool readMagic(GzipIstream& stream, std::string_view magic);

/// Does the content start like a text or binary environment? Raises KernelException when the file can't be opened.
[[nodiscard]] bool isTextFile(const std::string& fileName);
[[nodiscard]] bool isBinaryFile(const std::string& fileName);

}  // namespace quvex
