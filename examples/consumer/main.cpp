// A minimal host of utilkit: reports an error through the error stack and
// reads it back.
#include <cstdio>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/base/vc_string.h>

int main() {
  VCString location("consumer::main");
  VFErrorSet(-1, "example failure", location, 0);
  if (!VFErrorCheck(-1) || VFErrorGetCount() != 1) return 1;
  VFErrorClear();
  std::printf("utilkit consumer ok: %s\n", VFTextGet(VFGetUtilKitText(), 101));
  return 0;
}
