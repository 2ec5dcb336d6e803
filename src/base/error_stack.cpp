#include <utilkit/base/error_stack.h>

#include <deque>
#include <string>
#include <system_error>

struct VCErrorRecord {
  int32_t code = 0;
  int32_t flag = 0;
  int32_t osCode = 0;
  uint64_t seq = 0;  // push order, to find a record's position in O(1)
  std::string message;
  std::string location;
  std::string osMessage;
};

namespace {

std::deque<VCErrorRecord>& Stack() {
  thread_local std::deque<VCErrorRecord> stack;
  return stack;
}

uint64_t& NextSeq() {
  thread_local uint64_t seq = 0;
  return seq;
}

// Index of `record` in the stack, or -1 if it is not (or no longer) one of ours.
ptrdiff_t IndexOf(const VCErrorRecord* record) {
  auto& stack = Stack();
  if (stack.empty() || record->seq < stack.front().seq) return -1;
  uint64_t at = record->seq - stack.front().seq;
  if (at >= stack.size() || &stack[at] != record) return -1;
  return static_cast<ptrdiff_t>(at);
}

}  // namespace

void VFErrorSet(int32_t code, const char* message, const char* location, int32_t flag) {
  auto& stack = Stack();
  if (stack.size() >= kErrorStackCapacity) stack.pop_front();
  VCErrorRecord& r = stack.emplace_back();
  r.seq = NextSeq()++;
  r.code = code;
  r.flag = flag;
  r.message = message ? message : "";
  r.location = location ? location : "";
}

void VFErrorSetOpSysCode(int32_t osCode) {
  auto& stack = Stack();
  if (stack.empty()) return;
  stack.back().osCode = osCode;
  stack.back().osMessage = std::system_category().message(osCode);
}

bool VFErrorCheck(int32_t code) {
  for (const VCErrorRecord& r : Stack()) {
    if (r.code == code) return true;
  }
  return false;
}

void VFErrorClear() {
  Stack().clear();
}

size_t VFErrorGetCount() {
  return Stack().size();
}

VCString VFErrorGetFullString() {
  std::string out;
  for (const VCErrorRecord& r : Stack()) {
    out += "Error " + std::to_string(r.code) + " in " + r.location + ": " + r.message;
    if (r.osCode != 0) {
      out += " [system error " + std::to_string(r.osCode) + ": " + r.osMessage + "]";
    }
    out += '\n';
  }
  return VCString(std::move(out));
}

const VCErrorRecord* VFGetUtLibError() {
  auto& stack = Stack();
  return stack.empty() ? nullptr : &stack.front();
}

const VCErrorRecord* VFErrorGetNextErr(const VCErrorRecord* record) {
  if (!record) return nullptr;
  auto& stack = Stack();
  ptrdiff_t at = IndexOf(record);
  if (at < 0 || static_cast<size_t>(at) + 1 >= stack.size()) return nullptr;
  return &stack[static_cast<size_t>(at) + 1];
}

const VCErrorRecord* VFErrorGetLast() {
  auto& stack = Stack();
  return stack.empty() ? nullptr : &stack.back();
}

int32_t VFErrorGetCode(const VCErrorRecord* record) {
  return record ? record->code : 0;
}
const char* VFErrorGetMessage(const VCErrorRecord* record) {
  return record ? record->message.c_str() : "";
}
const char* VFErrorGetLocation(const VCErrorRecord* record) {
  return record ? record->location.c_str() : "";
}
int32_t VFErrorGetFlag(const VCErrorRecord* record) {
  return record ? record->flag : 0;
}
int32_t VFErrorGetOpSysCode(const VCErrorRecord* record) {
  return record ? record->osCode : 0;
}
const char* VFErrorGetOpSysMessage(const VCErrorRecord* record) {
  return record ? record->osMessage.c_str() : "";
}
