// VCUDataBufferFormatTarget: lets a Xerces-C XMLFormatter write into a VCUDataBuffer.
//
// The XML helper serialises through an XMLFormatter opened over this target;
// every chunk the formatter produces is appended to the target's buffer.
//
//   VCUDataBufferFormatTarget target;
//   XMLFormatter formatter("UTF-8", &target, XMLFormatter::NoEscapes,
//                          XMLFormatter::UnRep_CharRef);
//   formatter << someXmlChText;
//   send(socket, target.GetBuffer().GetBasePtr(), target.GetBuffer().GetSize(), 0);
//
// Ownership: the target holds its buffer by value. It derives from a Xerces
// class, so hosts that include this header compile and link against
// Xerces-C themselves, and create targets only while the Xerces platform is
// initialised (Xerces objects allocate through its memory manager).
//
// Failure: writeChars has no result, so when the buffer cannot grow it
// throws Xerces' OutOfMemoryException (the formatter's own convention for
// that case; -655577 is on the error stack as well). The XML helper catches
// it; hosts driving a formatter themselves catch it too.
#pragma once

#include <xercesc/framework/XMLFormatter.hpp>

#include <utilkit/base/export.h>
#include <utilkit/xml/data_buffer.h>

class UTILKIT_API VCUDataBufferFormatTarget : public XERCES_CPP_NAMESPACE::XMLFormatTarget {
 public:
  VCUDataBufferFormatTarget() = default;
  ~VCUDataBufferFormatTarget() override;

  // Appends `count` bytes to the buffer; throws OutOfMemoryException when it cannot grow.
  void writeChars(const XMLByte* const toWrite, const XMLSize_t count,
                  XERCES_CPP_NAMESPACE::XMLFormatter* const formatter) override;

  // The bytes written so far.
  const VCUDataBuffer& GetBuffer() const { return m_buffer; }
  VCUDataBuffer& GetBuffer() { return m_buffer; }

 private:
  VCUDataBuffer m_buffer;
};
