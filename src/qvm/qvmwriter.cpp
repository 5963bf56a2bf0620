#include "qvm/qvmwriter.h"

namespace quvex {

template <class Value>
void QVMWriter::pushEntry(const std::string& key, const Value& value) {
  pushProperty(key);
  pushValue(value);
}

void QVMWriter::pushValue(const std::string& key, const char* value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, bool value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, double value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, long long value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, int value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, long value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, char value) { pushEntry(key, value); }
void QVMWriter::pushValue(const std::string& key, const std::string& value) { pushEntry(key, value); }

void QVMWriter::pushValue(const char* value) { pushValue(std::string(value)); }

}  // namespace quvex
