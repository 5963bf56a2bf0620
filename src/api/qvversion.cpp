#include "api/qvversion.h"

#include <string>

namespace quvex {

int QVVersion::getMajorVersionNumber() { return QV_MAJOR_VERSION; }

int QVVersion::getMinorVersionNumber() { return QV_MINOR_VERSION; }

int QVVersion::getBuildDate() { return QV_BUILD_DATE; }

int QVVersion::getVersionCode() { return QV_MAJOR_VERSION * 10 + QV_MINOR_VERSION; }

std::string QVVersion::getPlatform() { return QV_PLATFORM; }

std::string QVVersion::getVersion() {
  return std::to_string(QV_MAJOR_VERSION) + "." + std::to_string(QV_MINOR_VERSION) + "." +
         std::to_string(QV_BUILD_DATE) + "-" + QV_PLATFORM;
}

std::string QVVersion::getCopyright() { return "Copyright (c) the Quvex authors. All rights reserved."; }

std::string QVVersion::getInfo() {
  return "Quvex " + std::to_string(QV_MAJOR_VERSION) + "." + std::to_string(QV_MINOR_VERSION) + " (" + QV_PLATFORM +
         ", build " + std::to_string(QV_BUILD_DATE) + ")\n" + getCopyright() + "\n";
}

}  // namespace quvex
