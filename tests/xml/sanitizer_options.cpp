// Sanitizer defaults for xml_tests, however the program is started: a failed
// allocation returns null instead of aborting, and anything above 192 MiB
// fails, so the out-of-memory paths of the data buffer and of
// ParseXmlFromFile can be exercised.
#if defined(__SANITIZE_ADDRESS__)
// Visible, so that the sanitizer runtime finds it despite hidden visibility.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=192";
}
#endif
