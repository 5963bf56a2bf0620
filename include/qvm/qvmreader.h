#pragma once

#include <cstdint>
#include <string>

namespace quvex {

/// The source of a saved environment, without its encoding, one token ahead: every test reads the next token if none
/// is pending, every `next...` consumes it and raises KernelException when it is of another kind.
class QVMReader {
 public:
  QVMReader() = default;
  QVMReader(const QVMReader&) = delete;
  QVMReader& operator=(const QVMReader&) = delete;
  virtual ~QVMReader() = default;

  /// Consumes the value that comes next, a map with all its contents. Raises when the file ends inside that map.
  virtual void skipValue();

  [[nodiscard]] virtual bool isOpenMap() = 0;
  [[nodiscard]] virtual bool isEndMap() = 0;
  /// None of `isOpenMap`, `isEndMap`, `isProperty`; so the end of the file passes too, see `hasNext`.
  [[nodiscard]] virtual bool isValue() = 0;
  [[nodiscard]] virtual bool isProperty(const std::string& name) = 0;
  [[nodiscard]] virtual bool isProperty() = 0;
  [[nodiscard]] virtual bool isDouble() = 0;
  /// An integer of 8 bits; `isInt` and `isLong` mean 32 bits, `isLongLong` any.
  [[nodiscard]] virtual bool isChar() = 0;
  [[nodiscard]] virtual bool isInt() = 0;
  [[nodiscard]] virtual bool isLong() = 0;
  [[nodiscard]] virtual bool isLongLong() = 0;
  [[nodiscard]] virtual bool isString() = 0;
  [[nodiscard]] virtual bool isBool() = 0;
  [[nodiscard]] virtual bool isTrue() = 0;
  [[nodiscard]] virtual bool isFalse() = 0;
  [[nodiscard]] virtual bool isNil() = 0;
  /// Any token at all: false at the end of the file.
  [[nodiscard]] virtual bool hasNext() = 0;

  /// Any value but a map.
  virtual void nextValue() = 0;
  virtual void nextOpenMap() = 0;
  virtual void nextEndMap() = 0;
  /// Returns the name.
  virtual std::string nextProperty() = 0;
  /// A property of this very name.
  virtual void nextProperty(const std::string& expected) = 0;
  virtual std::string nextString() = 0;
  virtual double nextDouble() = 0;
  virtual char nextChar() = 0;
  virtual std::int32_t nextInt() = 0;
  virtual std::int32_t nextLong() = 0;
  virtual std::int64_t nextLongLong() = 0;
  virtual bool nextBool() = 0;
  virtual void nextFalse() = 0;
  virtual void nextTrue() = 0;
  virtual void nextNil() = 0;
};

}  // namespace quvex
