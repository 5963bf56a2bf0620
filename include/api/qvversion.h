#pragma once

#include <string>

namespace quvex {

inline constexpr int QV_MAJOR_VERSION = 3;
inline constexpr int QV_MINOR_VERSION = 0;
/// Year, month and day in one number.
inline constexpr int QV_BUILD_DATE = 20130522;
inline constexpr const char* QV_PLATFORM = "Win64";

/// A static record of the build.
class QVVersion {
 public:
  QVVersion() = delete;

  [[nodiscard]] static int getMajorVersionNumber();
  [[nodiscard]] static int getMinorVersionNumber();
  [[nodiscard]] static int getBuildDate();
  /// Ten times the major number, plus the minor one.
  [[nodiscard]] static int getVersionCode();
  [[nodiscard]] static std::string getPlatform();
  /// "<major>.<minor>.<build date>-<platform>".
  [[nodiscard]] static std::string getVersion();
  /// The legal notice.
  [[nodiscard]] static std::string getCopyright();
  /// Name, version and legal notice, on lines of their own.
  [[nodiscard]] static std::string getInfo();
};

}  // namespace quvex
