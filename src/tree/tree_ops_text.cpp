// The grouping and sorting text of VCUTree:
//   operations separated by "."; each `name` or `name{KEY=value,...}`.
#include <utilkit/tree/tree.h>

#include <initializer_list>
#include <memory>
#include <new>

#include <utilkit/base/error_report.h>
#include <utilkit/base/number_text.h>
#include <utilkit/base/text_helpers.h>

#include "tree/tree_data.h"

namespace {

constexpr char kOpsLocation[] = "VCUTree::SetOpsFromText";
constexpr char kSeparateLocation[] = "VCUTree::SeparatePropAndModifiers";
constexpr int32_t kMaxLettersPerGroup = 26;

// Position of `value` among `keywords` (exact comparison), or -1.
int32_t KeywordIndex(const VCString& value, std::initializer_list<const char*> keywords) {
  int32_t index = 0;
  for (const char* keyword : keywords) {
    if (value.Compare(keyword) == 0) return index;
    ++index;
  }
  return -1;
}

// The grouping definition that `modifiers` describe for `name`, or null
// with the first bad modifier reported.
std::unique_ptr<VCUTreeGroupDefBase> MakeGroupDef(const VCString& name,
                                                  const VCKeyValueArray& modifiers) {
  int32_t type = 0;     // PROP, ALPHA, DATE
  int32_t subType = 0;  // DATE, MONTH, YEAR
  int32_t letters = 1;
  for (int32_t i = 0; i < modifiers.GetSize(); ++i) {
    const VCString& key = modifiers.GetKeyAt(i);
    VCString value = modifiers.GetValueAt(i);
    value.MakeUpper();
    int32_t code = 0;
    if (key.Compare("TYPE") == 0) {
      type = KeywordIndex(value, {"PROP", "ALPHA", "DATE"});
      if (type < 0) code = kTreeErrorGroupType;
    } else if (key.Compare("SUBTYPE") == 0) {
      subType = KeywordIndex(value, {"DATE", "MONTH", "YEAR"});
      if (subType < 0) code = kTreeErrorSubType;
    } else if (key.Compare("NUM") == 0) {
      // Taken as unsigned, so a negative count is too large.
      if (!VFAscToNum(value, &letters) || static_cast<uint32_t>(letters) > kMaxLettersPerGroup) {
        code = kTreeErrorLettersPerGroup;
      }
    } else {
      code = kTreeErrorModifier;
    }
    if (code != 0) {
      VFReportError(code, kOpsLocation);
      return nullptr;
    }
  }
  if (type == 0) return std::make_unique<VCUTreeGroupByProperty>(name);
  if (type == 1) {
    auto alpha = std::make_unique<VCUTreeGroupAlphabetic>(name);
    alpha->SetNumLettersPerGroup(letters);
    return alpha;
  }
  return std::make_unique<VCUTreeGroupByDate>(
      name, static_cast<VCUTreeGroupByDate::VTGroupByDateType>(subType));
}

// The sort key that `modifiers` describe for `name`, or null with the first
// bad modifier reported.
std::unique_ptr<VCUTreeSortDefBase> MakeSortDef(const VCString& name,
                                                const VCKeyValueArray& modifiers) {
  int32_t direction = 0;  // INC, DEC
  bool mixedString = false;
  for (int32_t i = 0; i < modifiers.GetSize(); ++i) {
    const VCString& key = modifiers.GetKeyAt(i);
    VCString value = modifiers.GetValueAt(i);
    value.MakeUpper();
    int32_t code = 0;
    if (key.Compare("DIR") == 0) {
      direction = KeywordIndex(value, {"INC", "DEC"});
      if (direction < 0) code = kTreeErrorSortDirection;
    } else if (key.Compare("METHOD") == 0) {
      mixedString = KeywordIndex(value, {"MIXEDSTRING"}) == 0;
      if (!mixedString) code = kTreeErrorSortMethod;
    } else {
      code = kTreeErrorModifier;
    }
    if (code != 0) {
      VFReportError(code, kOpsLocation);
      return nullptr;
    }
  }
  auto sort = std::make_unique<VCUTreeSortBasic>(name, static_cast<VTTreeSortDirection>(direction));
  sort->SetMethod(mixedString ? VCUTreeSortBasic::kMixedString : VCUTreeSortBasic::kVariantCompare);
  return sort;
}

}  // namespace

char VCUTree::SetGroupOpsFromText(const char* text) {
  return SetOpsFromText(1, text);
}

char VCUTree::SetSortOpsFromText(const char* text) {
  return SetOpsFromText(0, text);
}

char VCUTree::SetOpsFromText(char grouping, const char* text) {
  grouping ? ClearGrouping() : ClearSorting();
  // Parses and appends one operation; false with the problem reported.
  const auto append = [&](const VCString& operation) {
    VCString name;
    VCKeyValueArray modifiers;
    if (!SeparatePropAndModifiers(operation, &name, &modifiers)) return false;
    if (name.IsEmpty()) {
      VFReportError(kTreeErrorBlankPropertyName, kOpsLocation);
      return false;
    }
    if (grouping) {
      std::unique_ptr<VCUTreeGroupDefBase> def = MakeGroupDef(name, modifiers);
      if (!def) return false;
      if (!AppendGroupingOp(def.release())) throw std::bad_alloc();
      return true;
    }
    std::unique_ptr<VCUTreeSortDefBase> def = MakeSortDef(name, modifiers);
    if (!def) return false;
    if (!AppendSortingOp(def.release())) throw std::bad_alloc();
    return true;
  };
  try {
    VCStringArray operations;
    const int32_t count = operations.SplitString(
        text, ".", VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty);
    if (count < 0) throw std::bad_alloc();
    if (count == 0) {
      VFReportError(grouping ? kTreeErrorNoGroupingProperties : kTreeErrorNoSortingProperties,
                    kOpsLocation);
      return 0;
    }
    bool ok = true;
    for (int32_t i = 0; i < count && ok; ++i) ok = append(operations[i]);
    if (ok) return 1;
  } catch (const std::bad_alloc&) {
    VFReportError(kTreeErrorOutOfMemory, kOpsLocation);
  }
  // Earlier, valid operations of the same text go too.
  grouping ? ClearGrouping() : ClearSorting();
  return 0;
}

char VCUTree::SeparatePropAndModifiers(const char* text, VCString* propName,
                                       VCKeyValueArray* modifiers) {
  VCString squeezed(text);
  VFSqueeze(squeezed, kSqueezeLeading | kSqueezeTrailing);
  const int32_t open = squeezed.Find('{');
  const int32_t close = squeezed.Find('}');
  if (open < 0 && close < 0) {
    *propName = squeezed;
    return 1;
  }
  if (open <= 0 || close < open + 2 || close != squeezed.GetLength() - 1) {
    VFReportError(kTreeErrorBadBraces, kSeparateLocation);
    return 0;
  }
  *propName = squeezed.Left(open);  // as written: a blank before "{" stays
  VCStringArray pairs;
  if (pairs.SplitString(squeezed.Mid(open + 1, close - open - 1), ",",
                        VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty) < 0) {
    throw std::bad_alloc();
  }
  if (pairs.IsEmpty()) {
    VFReportError(kTreeErrorNoModifiers, kSeparateLocation);
    return 0;
  }
  for (const VCString& pair : pairs) {
    VCString key, value;
    if (!VFSplitIntoKeyValue(pair, &key, &value, 0)) {
      VFReportError(kTreeErrorModifierFormat, kSeparateLocation);
      return 0;
    }
    if (!modifiers->SetValue(key, value)) throw std::bad_alloc();
  }
  return 1;
}
