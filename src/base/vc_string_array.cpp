#include <utilkit/base/vc_string_array.h>

#include <string_view>

namespace {

int32_t FindWith(const VCStringArray& array, const char* text, int32_t start,
                 int (VCString::*compare)(const char*) const) {
  for (int32_t i = start < 0 ? 0 : start; i < array.GetSize(); ++i) {
    if ((array[i].*compare)(text) == 0) return i;
  }
  return -1;
}

}  // namespace

int32_t VCStringArray::SplitString(const char* text, const char* separators, int32_t flags) {
  RemoveAll();
  const std::string_view all(text ? text : "");
  const std::string_view seps(separators ? separators : "");
  size_t first = 0;
  for (;;) {
    const size_t last = seps.empty() ? std::string_view::npos : all.find_first_of(seps, first);
    VCString piece(all.substr(first, last == std::string_view::npos ? last : last - first));
    if (flags & kSplitTrim) piece.Trim();
    if (!((flags & kSplitSkipEmpty) && piece.IsEmpty()) && Add(std::move(piece)) < 0) {
      RemoveAll();
      return -1;
    }
    if (last == std::string_view::npos) return GetSize();
    first = last + 1;
  }
}

int32_t VCStringArray::Find(const char* text, int32_t start) const {
  return FindWith(*this, text, start, &VCString::Compare);
}

int32_t VCStringArray::FindNoCase(const char* text, int32_t start) const {
  return FindWith(*this, text, start, &VCString::CompareNoCase);
}
