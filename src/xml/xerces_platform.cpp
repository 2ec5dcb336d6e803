#include "xml/xerces_platform.h"

#include <cstdio>
#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>

namespace utilkit::xml {

bool EnsureXercesPlatform() {
  static std::once_flag once;
  static bool ready = false;
  std::call_once(once, [] {
    try {
      XERCES_CPP_NAMESPACE::XMLPlatformUtils::Initialize();
      ready = true;
    } catch (...) {  // XMLException, OutOfMemoryException or anything else
      std::fputs("Error initialising Xerces!\n", stderr);
    }
  });
  return ready;
}

}  // namespace utilkit::xml
