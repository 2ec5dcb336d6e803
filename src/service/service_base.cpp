#include <utilkit/service/service_base.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <mutex>

#include <utilkit/base/error_report.h>
#include <utilkit/base/general_helper.h>
#include <utilkit/service/service_errors.h>

#include "service/service_platform.h"

namespace {

constexpr const char* kDefaultText = "Vexa Server";

// Copies at most 63 characters of `text` into the 64-byte `target`.
void CopyName(char* target, const char* text) {
  std::snprintf(target, 64, "%s", text ? text : "");
}

// The arguments from argv[1] on as one command line, arguments with blanks
// quoted, split again into tokens.
std::vector<VCString> Tokens(int argc, char** argv) {
  VCString line;
  for (int i = 1; i < argc; ++i) {
    VCString arg(argv[i]);
    if (i > 1) line += ' ';
    if (arg.Find(' ') < 0 && arg.Find('\t') < 0) {
      line += arg;
      continue;
    }
    arg.Replace("\"", "\\\"");
    line += '"';
    line += arg;
    line += '"';
  }
  return VCUGeneralHelper::SplitCommandLine(line);
}

// Reports read the state and pass it on under this lock, so that the last
// report the manager gets tells the last state set, whichever thread set it.
std::mutex g_reportLock;

void Report(uintptr_t handle, const VTServiceStatus& status) {
  std::lock_guard<std::mutex> hold(g_reportLock);
  service_platform::ReportStatus(handle, status);
}

}  // namespace

VCUServiceBase* VCUServiceBase::m_pThis = nullptr;

VCUServiceBase::VCUServiceBase(const char* serviceName) {
  CopyName(m_szServiceName, serviceName);
  m_pThis = this;
}

VCUServiceBase::~VCUServiceBase() {
  if (m_pThis == this) m_pThis = nullptr;
}

void VCUServiceBase::Run() {
  PutLogMessage(kServiceLogFailure, "VCUServiceBase::Run",
                "In VCUServiceBase::Run - no user Run function");
}

int VCUServiceBase::OnInit() {
  PutLogMessage(kServiceLogFailure, "VCUServiceBase::OnInit",
                "In VCUServiceBase::OnInit - no user OnInit function");
  return 1;
}

void VCUServiceBase::OnStop() {
  PutLogMessage(kServiceLogFailure, "VCUServiceBase::OnStop",
                "In VCUServiceBase::OnStop - no user OnStop function");
}

void VCUServiceBase::OnShutdown() {}

void VCUServiceBase::SetLogLevel(VDCULogLevel level) {
  m_LogLevel = level;
}

VDCULogLevel VCUServiceBase::GetLogLevel() {
  return m_LogLevel;
}

void VCUServiceBase::PutLogMessage(VDCULogLevel, const char*, const char*) {
  std::lock_guard<VCThreadSync> hold(m_LogLock);
}

int VCUServiceBase::ParseStandardArgs(int argc, char** argv) {
  constexpr const char* kWhere = "VCUServiceBase::ParseStandardArgs";
  PutLogMessage(kServiceLogTrace, kWhere, "Parsing arguments");
  if (argc < 2 || argv == nullptr || argv[1] == nullptr) return 0;
  const bool install = VCString(argv[1]).CompareNoCase("-i") == 0;
  if (!install && VCString(argv[1]).CompareNoCase("-u") != 0) {
    PutLogMessage(kServiceLogTrace, kWhere, "Arguments not recognised");
    return 0;
  }
  if (argc < 3) {
    if (install && IsInstalled()) {
      std::printf("%s is already installed\n", m_szServiceName);
    } else if (install) {
      PrintInstallResult(m_szServiceName, Install());
    } else if (!IsInstalled()) {
      std::printf("%s is not installed\n", m_szServiceName);
    } else {
      PrintRemoveResult(m_szServiceName, Uninstall());
    }
    return 1;
  }
  const std::vector<VCString> tokens = Tokens(argc, argv);
  char name[64];
  CopyName(name, tokens.size() > 1 ? tokens[1].c_str() : "");
  if (!install) {
    PrintRemoveResult(name, Uninstall(name));
    return 1;
  }
  VCStringArray depends;
  VCString displayName(kDefaultText);
  VCString description(kDefaultText);
  for (size_t i = 2; i + 1 < tokens.size(); ++i) {
    if (tokens[i] == "-depends") {
      depends.SplitString(tokens[++i], ",",
                          VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty);
    } else if (tokens[i] == "-name") {
      displayName = tokens[++i];
    } else if (tokens[i] == "-description") {
      description = tokens[++i];
    }
  }
  PrintInstallResult(name, Install(name, depends, displayName, description));
  return 1;
}

void VCUServiceBase::PrintInstallResult(char* name, int installed) {
  const int32_t error = service_platform::SystemError();
  if (installed) {
    std::printf("%s installed\n", name);
  } else {
    std::printf("%s failed to install. Error %d\n", name, static_cast<int>(error));
  }
}

void VCUServiceBase::PrintRemoveResult(char* name, int removed) {
  const int32_t error = service_platform::SystemError();
  if (removed) {
    std::printf("%s removed. (You must delete the file (%s) yourself.)\n", name,
                service_platform::ProgramPath().c_str());
  } else {
    std::printf("Could not remove %s. Error %d\n", name, static_cast<int>(error));
  }
}

int VCUServiceBase::StartServiceA() {
  constexpr const char* kWhere = "VCUServiceBase::StartService";
  PutLogMessage(kServiceLogTrace, kWhere, "Calling StartServiceCtrlDispatcher");
  const bool started = service_platform::RunDispatcher(m_szServiceName);
  const int32_t error = service_platform::SystemError();
  PutLogMessage(kServiceLogTrace, kWhere, "Returned from StartServiceCtrlDispatcher");
  if (started) return 1;
  service_platform::SetSystemError(error);
  SetOpSysError(kServiceErrorStart, kWhere);
  return 0;
}

int VCUServiceBase::Install() {
  return Install(m_szServiceName, VCStringArray(), kDefaultText, kDefaultText);
}

int VCUServiceBase::Uninstall() {
  return Uninstall(m_szServiceName);
}

void VCUServiceBase::SetStatus(unsigned long state) {
  PutLogMessage(kServiceLogTrace, "VCUServiceBase::SetStatus",
                VCString::Formatted("VCUServiceBase::SetStatus(%lu, %lu)",
                                    static_cast<unsigned long>(m_hServiceStatus), state));
  m_Status.currentState = static_cast<uint32_t>(state);
  Report(m_hServiceStatus, m_Status);
}

int VCUServiceBase::Initialise() {
  constexpr const char* kWhere = "VCUServiceBase::Initialise";
  PutLogMessage(kServiceLogTrace, kWhere, "Entering VCSericeBase::Initialise");
  SetStatus(2);
  const int result = OnInit();
  m_Status.win32ExitCode = 0;
  m_Status.serviceSpecificExitCode = 0;
  m_Status.checkPoint = 0;
  if (result != 0) {
    SetStatus(4);
    PutLogMessage(kServiceLogTrace, kWhere, "Leaving VCSericeBase::Initialise");
    return 1;
  }
  SetStatus(1);
  PutLogMessage(kServiceLogFailure, kWhere, "Failed service initialisation");
  return 0;
}

void VCUServiceBase::ServiceMain(unsigned long, char**) {
  constexpr const char* kWhere = "VCUServiceBase::ServiceMain";
  VCUServiceBase* self = m_pThis;
  if (self == nullptr) return;
  self->PutLogMessage(kServiceLogTrace, kWhere, "Entering VCUServiceBase::ServiceMain()");
  self->m_Status.currentState = 2;
  self->m_hServiceStatus = service_platform::RegisterHandler(self->m_szServiceName);
  if (self->m_hServiceStatus == 0) {
    SetOpSysError(kServiceErrorRegisterHandler, kWhere);
    return;
  }
  if (self->Initialise()) {
    self->m_Status.win32ExitCode = 0;
    self->m_Status.serviceSpecificExitCode = 0;
    self->m_Status.checkPoint = 0;
    self->Run();
  }
  self->SetStatus(1);
  self->PutLogMessage(kServiceLogTrace, kWhere, "Leaving VCUServiceBase::ServiceMain()");
}

void VCUServiceBase::Handler(unsigned long opcode) {
  constexpr const char* kWhere = "VCUServiceBase::Handler";
  VCUServiceBase* self = m_pThis;
  if (self == nullptr) return;
  self->PutLogMessage(
      kServiceLogTrace, kWhere,
      VCString::Formatted("VCUServiceBase::Handler - OpCode = %d", static_cast<int>(opcode)));
  if (opcode == 1) {
    self->SetStatus(3);
    self->OnStop();
    self->RequestStop();
  } else if (opcode == 5) {
    self->OnShutdown();
    self->RequestStop();
  }
  self->PutLogMessage(kServiceLogFailure, kWhere, "Leaving Handler, updating status");
  Report(self->m_hServiceStatus, self->m_Status);
}

unsigned long VCUServiceBase::GetExitCode() {
  return m_Status.win32ExitCode;
}

void VCUServiceBase::RequestStop() {
  {
    std::lock_guard<std::mutex> hold(m_stopMutex);
    m_stopRequested = true;
  }
  m_stopSignal.notify_all();
}

bool VCUServiceBase::WaitForStop(int32_t milliseconds) {
  std::unique_lock<std::mutex> hold(m_stopMutex);
  return m_stopSignal.wait_for(hold, std::chrono::milliseconds(milliseconds < 0 ? 0 : milliseconds),
                               [this] { return m_stopRequested; });
}

bool VCUServiceBase::IsStopRequested() {
  std::lock_guard<std::mutex> hold(m_stopMutex);
  return m_stopRequested;
}

VCString VCUServiceBase::GetActualList(VCStringArray names) {
  VCString list;
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    list += names[i];
    list += '#';
  }
  std::string& bytes = list.str();
  for (size_t i = 1; i < bytes.size(); ++i) {
    if (bytes[i] == '#') bytes[i] = '\0';
  }
  return list;
}

void VCUServiceBase::SetOpSysError(int code, const char* location) {
  const int32_t error = service_platform::SystemError();
  VFReportOsError(code, location, error);
  service_platform::SetSystemError(error);
}
