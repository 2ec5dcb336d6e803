// The report library writer: the file format of library_xml.h written in
// blocks to a sink, never as one whole text (images are encoded piece by
// piece into the block being filled).
//
//   BufferSink sink(out);
//   if (!WriteLibrary(library, sink, "VCULibraryXML::SaveToBuffer")) { ... }
//
// Ownership: the writer only reads the library; the sink is the caller's.
#pragma once

#include <cstddef>

#include <utilkit/library_xml/library_xml.h>

namespace utilkit::library_xml {

// Where the writer's blocks go.
class WriteSink {
 public:
  virtual ~WriteSink() = default;
  // Takes `size` bytes; false (with its record pushed) when it cannot.
  virtual bool Put(const char* data, size_t size) = 0;
};

// Writes `library` to `sink` in blocks of about 64 KiB. False when the sink
// refuses a block, or with -655577 at `location` when memory runs out.
bool WriteLibrary(const VCULibraryXML& library, WriteSink& sink, const char* location);

}  // namespace utilkit::library_xml
