#include <utilkit/xml/data_buffer_format_target.h>

#include <limits>

#include <xercesc/util/OutOfMemoryException.hpp>

VCUDataBufferFormatTarget::~VCUDataBufferFormatTarget() = default;

void VCUDataBufferFormatTarget::writeChars(const XMLByte* const toWrite, const XMLSize_t count,
                                           XERCES_CPP_NAMESPACE::XMLFormatter* const) {
  // The formatter hands over at most one internal chunk at a time, far
  // below the 32-bit limit; a larger count is refused as an out-of-memory case.
  if (count > static_cast<XMLSize_t>(std::numeric_limits<int32_t>::max()) ||
      !m_buffer.Append(reinterpret_cast<const char*>(toWrite), static_cast<int32_t>(count))) {
    throw XERCES_CPP_NAMESPACE::OutOfMemoryException();
  }
}
