#pragma once

#include <string>

namespace quvex {

/// The sink of a saved environment, without its encoding: a document is one map, a map is a sequence of entries, an
/// entry is a property (a name and one value) or a bare value. A map of bare values serves as a list.
/// Every `push...` raises KernelException when the document's shape forbids it.
class QVMWriter {
 public:
  QVMWriter() = default;
  QVMWriter(const QVMWriter&) = delete;
  QVMWriter& operator=(const QVMWriter&) = delete;
  /// Raises KernelException when a map is still open, unless another failure is on its way.
  virtual ~QVMWriter() noexcept(false) = default;

  virtual void pushMap() = 0;
  virtual void popMap() = 0;

  /// `pushProperty(key)` and `pushValue(value)` in one.
  virtual void pushValue(const std::string& key, const char* value);
  virtual void pushValue(const std::string& key, bool value);
  virtual void pushValue(const std::string& key, double value);
  virtual void pushValue(const std::string& key, long long value);
  virtual void pushValue(const std::string& key, int value);
  virtual void pushValue(const std::string& key, long value);
  virtual void pushValue(const std::string& key, char value);
  virtual void pushValue(const std::string& key, const std::string& value);

  /// The name of a property; the next value belongs to it.
  virtual void pushProperty(const std::string& key) = 0;

  virtual void pushValue(bool value) = 0;
  virtual void pushValue(double value) = 0;
  virtual void pushValue(long long value) = 0;
  virtual void pushValue(int value) = 0;
  virtual void pushValue(long value) = 0;
  virtual void pushValue(char value) = 0;
  virtual void pushValue(const char* value);
  virtual void pushValue(const std::string& value) = 0;
  virtual void pushTrue() = 0;
  virtual void pushFalse() = 0;
  virtual void pushNil() = 0;

 private:
  template <class Value>
  void pushEntry(const std::string& key, const Value& value);
};

}  // namespace quvex
