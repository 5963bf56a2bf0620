#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qvm/streamwriter.h"

namespace quvex {

/// The encoding for people: `{"a"=1,"b"=` and a line feed, `{2,3}}`, behind the header "<QVM01>" CR LF.
/// `openMaps` has one entry per map that is open, the innermost last.
///
/// Infinities and not-a-number are written bare, without separator, and do not count as entries; `TextReader` takes
/// them apart again, but cannot read nil and unsigned not-a-number at all.
class TextWriter final : public StreamWriter {
 public:
  static constexpr const char* kName = "quvex::TextWriter";

  TextWriter(const std::string& fileName, bool compressed);
  ~TextWriter() noexcept(false) override;

  using StreamWriter::pushValue;
  void pushMap() override;
  void popMap() override;
  /// The key is written as it is: a double quote in it makes the file unreadable.
  void pushProperty(const std::string& key) override;
  void pushValue(bool value) override;
  void pushValue(double value) override;
  void pushValue(long long value) override;
  /// The one raw character, without quotes.
  void pushValue(char value) override;
  void pushValue(const std::string& value) override;
  void pushNil() override;

 private:
  struct OpenMap {
    std::uint32_t nbEntries = 0;  // finished ones
    bool propertyWaits = false;   // a name was written, its value not yet
  };

  void beforeValue();
  void afterValue();
  void writeValue(std::string_view text);

  std::vector<OpenMap> openMaps;
};

}  // namespace quvex
