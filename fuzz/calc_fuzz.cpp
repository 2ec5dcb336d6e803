// libFuzzer target for the calculator's expressions.
//
// The input is one expression. Variables are numbered in the order they are
// asked for and read 1.5 * (id + 1). A text that compiles is evaluated one
// row at a time and over a block of rows, and the two must agree bit for bit
// (NaN with NaN), since the block form is an optimisation of the same program.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <utilkit/base/calculator.h>
#include <utilkit/base/error_stack.h>

namespace {

class FuzzCalculator : public VCCalculator {
 public:
  bool GetVariableId(const char* name, int32_t* id) override {
    for (size_t i = 0; i < names.size(); ++i) {
      if (names[i] == name) {
        *id = static_cast<int32_t>(i);
        return true;
      }
    }
    if (names.size() >= 64) return false;
    names.emplace_back(name);
    *id = static_cast<int32_t>(names.size() - 1);
    return true;
  }
  bool GetVariableValue(int32_t id, double* value) override {
    *value = 1.5 * (id + 1);
    return true;
  }
  std::vector<std::string> names;
};

bool Same(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  FuzzCalculator calc;
  VFErrorClear();
  if (!calc.SetExpression(text.c_str())) {
    if (VFErrorGetLast() == nullptr) std::abort();  // a refusal always says why
    VFErrorClear();
    return 0;
  }
  double one = 0;
  const bool rowOk = calc.EvaluateExpressionToDouble(&one);
  VFErrorClear();
  const int32_t slots = calc.GetVariableCount();
  std::vector<std::vector<double>> columns(static_cast<size_t>(slots));
  std::vector<const double*> pointers;
  for (int32_t slot = 0; slot < slots; ++slot) {
    columns[slot].assign(4, 1.5 * (calc.GetVariableIdOfSlot(slot) + 1));
    pointers.push_back(columns[slot].data());
  }
  std::vector<double> out(4);
  size_t failed = 0;
  const bool blockOk = calc.EvaluateBlock(pointers.data(), 0, 4, out.data(), &failed);
  VFErrorClear();
  if (rowOk && blockOk && !Same(one, out[0])) std::abort();
  return 0;
}
