#include "qvm/textwriter.h"

#include <array>
#include <boost/lexical_cast.hpp>
#include <charconv>
#include <cmath>

#include "qvm/fileformat.h"

namespace quvex {

TextWriter::TextWriter(const std::string& fileName, bool compressed) : StreamWriter(fileName, compressed) {
  stream.write(kTextMagic);
  stream.write("\r\n");
}

TextWriter::~TextWriter() noexcept(false) { checkStable(here<TextWriter>(), openMaps.size()); }

void TextWriter::pushMap() {
  if (!openMaps.empty()) beforeValue();
  stream.write("\n{");
  openMaps.emplace_back();
}

void TextWriter::popMap() {
  checkMapToPop(here<TextWriter>(), openMaps.size());
  openMaps.pop_back();
  stream.put('}');
  afterValue();
}

void TextWriter::pushProperty(const std::string& key) {
  checkPropertyInMap(here<TextWriter>(), openMaps.size());
  if (openMaps.back().nbEntries != 0) stream.put(',');
  stream.put('"');
  stream.write(key);
  stream.write("\"=");
  openMaps.back().propertyWaits = true;
}

void TextWriter::beforeValue() {
  if (openMaps.empty()) raise<KernelException>(here<TextWriter>(), "Cannot push a value outside a map");
  const OpenMap& innermost = openMaps.back();
  if (!innermost.propertyWaits && innermost.nbEntries != 0) stream.put(',');
}

void TextWriter::afterValue() {
  if (openMaps.empty()) return;
  ++openMaps.back().nbEntries;
  openMaps.back().propertyWaits = false;
}

void TextWriter::writeValue(std::string_view text) {
  beforeValue();
  stream.write(text);
  afterValue();
}

void TextWriter::pushValue(bool value) { writeValue(value ? "true" : "false"); }

void TextWriter::pushValue(double value) {
  if (std::isnan(value)) return stream.write("nan");
  if (std::isinf(value)) return stream.write(value > 0 ? "inf" : "-inf");
  // The digits of printf's "%.17g", whatever decimal point the host's locale has.
  constexpr int kDigits = 17;
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, kDigits);
  writeValue({text.data(), end.ptr});
}

void TextWriter::pushValue(long long value) { writeValue(boost::lexical_cast<std::string>(value)); }

void TextWriter::pushValue(char value) { writeValue({&value, 1}); }

void TextWriter::pushValue(const std::string& value) {
  beforeValue();
  stream.put('"');
  std::size_t written = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '"' && value[i] != '\\') continue;
    stream.write(std::string_view(value).substr(written, i - written));
    stream.put('\\');
    written = i;
  }
  stream.write(std::string_view(value).substr(written));
  stream.put('"');
  afterValue();
}

void TextWriter::pushNil() { writeValue("nil"); }

}  // namespace quvex
