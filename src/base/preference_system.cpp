#include <utilkit/base/error_stack.h>
#include <utilkit/base/preference_system.h>

#include <charconv>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace {

struct Store {
  std::mutex mutex;
  std::map<std::string, std::string, std::less<>> values;
};

Store& TheStore() {
  static Store store;
  return store;
}

// The stored text of `path`, if set.
std::optional<std::string> Find(const char* path) {
  if (!path) return std::nullopt;
  Store& store = TheStore();
  std::lock_guard<std::mutex> hold(store.mutex);
  auto found = store.values.find(std::string_view(path));
  if (found == store.values.end()) return std::nullopt;
  return found->second;
}

bool Set(const char* path, std::string_view value, const char* location) {
  if (!path || !*path) {
    VFErrorSet(kVCPreferenceErrorPath, "Invalid preference path", location, 0);
    return false;
  }
  Store& store = TheStore();
  try {
    std::lock_guard<std::mutex> hold(store.mutex);
    store.values.insert_or_assign(std::string(path), std::string(value));
    return true;
  } catch (const std::exception&) {
    VFErrorSet(kVCPreferenceErrorMemory, VCString("Cannot store preference: ") + path, location, 0);
    return false;
  }
}

}  // namespace

bool VCPreferenceSystem::SetStringValue(const char* path, const char* value) {
  return Set(path, value ? value : "", "VCPreferenceSystem::SetStringValue");
}

bool VCPreferenceSystem::SetHugeValue(const char* path, int64_t value) {
  return Set(path, std::to_string(value), "VCPreferenceSystem::SetHugeValue");
}

int64_t VCPreferenceSystem::GetHugeValue(const char* path, int64_t defaultValue) {
  try {
    VCString text = Find(path).value_or(std::string());
    text.Trim();
    std::string_view digits = text.view();
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
    int64_t value = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole ? value : defaultValue;
  } catch (const std::exception&) {
    return defaultValue;
  }
}

VCString VCPreferenceSystem::GetStringValue(const char* path, const char* defaultValue) {
  try {
    std::optional<std::string> value = Find(path);
    return value ? VCString(std::move(*value)) : VCString(defaultValue);
  } catch (const std::exception&) {
    return VCString();
  }
}

bool VCPreferenceSystem::Remove(const char* path) {
  if (!path) return false;
  Store& store = TheStore();
  std::lock_guard<std::mutex> hold(store.mutex);
  auto found = store.values.find(std::string_view(path));
  if (found == store.values.end()) return false;
  store.values.erase(found);
  return true;
}

void VCPreferenceSystem::Clear() {
  Store& store = TheStore();
  std::lock_guard<std::mutex> hold(store.mutex);
  store.values.clear();
}
