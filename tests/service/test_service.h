// Services for the tests: LogService records its log lines; TestService
// also records its hook calls and lets a test choose what OnInit returns
// and what Run does. Parse runs the standard arguments.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <utilkit/service/service_base.h>

class LogService : public VCUServiceBase {
 public:
  explicit LogService(const char* name = "utilkit_test_svc") : VCUServiceBase(name) {}

  // Log lines as "<level>|<location>|<text>" and hook calls by name, in order.
  std::vector<std::string> Lines() {
    std::lock_guard<VCThreadSync> hold(m_LogLock);
    return m_lines;
  }
  void Note(const std::string& line) {
    std::lock_guard<VCThreadSync> hold(m_LogLock);
    m_lines.push_back(line);
  }
  uint32_t State() const { return m_Status.currentState; }
  const char* Name() const { return m_szServiceName; }
  using VCUServiceBase::GetActualList;

 protected:
  void PutLogMessage(VDCULogLevel level, const char* location, const char* text) override {
    Note(std::to_string(level) + "|" + location + "|" + text);
  }

 private:
  std::vector<std::string> m_lines;
};

class TestService : public LogService {
 public:
  using LogService::LogService;

  int initResult = 1;
  std::function<void(TestService&)> work;

  int OnInit() override {
    Note("OnInit");
    return initResult;
  }
  void Run() override {
    Note("Run");
    if (work) work(*this);
  }
  void OnStop() override { Note("OnStop"); }
  void OnShutdown() override { Note("OnShutdown"); }
};

// Runs ParseStandardArgs on "prog" and `args`, which must be recognised;
// what it printed.
inline std::string Parse(VCUServiceBase& service, std::vector<std::string> args) {
  args.insert(args.begin(), "prog");
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  testing::internal::CaptureStdout();
  EXPECT_EQ(service.ParseStandardArgs(static_cast<int>(argv.size()), argv.data()), 1);
  return testing::internal::GetCapturedStdout();
}
