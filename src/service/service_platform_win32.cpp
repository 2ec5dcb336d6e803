// The service base under the Windows service control manager.
#include <windows.h>

#include <cstdio>

#include <utilkit/service/service_errors.h>

#include "service/service_platform.h"

namespace {

// A service manager handle, closed at the end of the scope without
// disturbing the last error that a failure left.
class ScHandle {
 public:
  explicit ScHandle(SC_HANDLE handle) : m_handle(handle) {}
  ScHandle(const ScHandle&) = delete;
  ScHandle& operator=(const ScHandle&) = delete;
  ~ScHandle() {
    const DWORD error = GetLastError();
    if (m_handle) CloseServiceHandle(m_handle);
    SetLastError(error);
  }
  SC_HANDLE get() const { return m_handle; }

 private:
  SC_HANDLE m_handle;
};

SC_HANDLE OpenManager() {
  return OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
}

}  // namespace

int VCUServiceBase::Install(char* name, VCStringArray depends, VCString displayName,
                            VCString description) {
  constexpr const char* kWhere = "VCUServiceBase::Install";
  ScHandle manager(OpenManager());
  if (!manager.get()) {
    SetOpSysError(kServiceErrorOpenManager, kWhere);
    return 0;
  }
  VCString path = service_platform::ProgramPath();
  if (path.Find(' ') >= 0) path = "\"" + path + "\"";
  const VCString list = GetActualList(depends);
  ScHandle service(CreateServiceA(manager.get(), name, displayName, SERVICE_ALL_ACCESS,
                                  SERVICE_WIN32_OWN_PROCESS | SERVICE_INTERACTIVE_PROCESS,
                                  SERVICE_AUTO_START, SERVICE_ERROR_NORMAL, path, nullptr, nullptr,
                                  depends.GetSize() ? list.c_str() : nullptr, nullptr,
                                  nullptr));  // no account: LocalSystem
  if (!service.get()) {
    SetOpSysError(kServiceErrorCreate, kWhere);
    return 0;
  }
  if (!description.IsEmpty()) {
    SERVICE_DESCRIPTIONA text{description.str().data()};
    if (!ChangeServiceConfig2A(service.get(), SERVICE_CONFIG_DESCRIPTION, &text))
      std::printf("Service description not set\n");
  }
  return 1;
}

int VCUServiceBase::Uninstall(char* name) {
  constexpr const char* kWhere = "VCUServiceBase::Uninstall";
  ScHandle manager(OpenManager());
  if (!manager.get()) {
    SetOpSysError(kServiceErrorOpenManager, kWhere);
    return 0;
  }
  ScHandle service(OpenServiceA(manager.get(), name, DELETE));
  if (!service.get()) return 0;
  if (!DeleteService(service.get())) {
    SetOpSysError(kServiceErrorDelete, kWhere);
    return 0;
  }
  return 1;
}

int VCUServiceBase::IsInstalled() {
  ScHandle manager(OpenManager());
  if (!manager.get()) {
    SetOpSysError(kServiceErrorOpenManager, "VCUServiceBase::IsInstalled");
    return 0;
  }
  ScHandle service(OpenServiceA(manager.get(), m_szServiceName, SERVICE_QUERY_CONFIG));
  return service.get() != nullptr;
}

namespace service_platform {

bool RunDispatcher(const char* name) {
  char serviceName[64];
  std::snprintf(serviceName, sizeof serviceName, "%s", name);
  SERVICE_TABLE_ENTRYA table[] = {{serviceName, VCUServiceBase::ServiceMain}, {nullptr, nullptr}};
  return StartServiceCtrlDispatcherA(table) != 0;
}

uintptr_t RegisterHandler(const char* name) {
  return reinterpret_cast<uintptr_t>(RegisterServiceCtrlHandlerA(name, VCUServiceBase::Handler));
}

void ReportStatus(uintptr_t handle, const VTServiceStatus& status) {
  if (handle == 0) return;
  const DWORD error = GetLastError();
  SERVICE_STATUS record{status.serviceType,
                        status.currentState,
                        status.controlsAccepted,
                        status.win32ExitCode,
                        status.serviceSpecificExitCode,
                        status.checkPoint,
                        status.waitHint};
  SetServiceStatus(reinterpret_cast<SERVICE_STATUS_HANDLE>(handle), &record);
  SetLastError(error);
}

int32_t SystemError() {
  return static_cast<int32_t>(GetLastError());
}

void SetSystemError(int32_t code) {
  SetLastError(static_cast<DWORD>(code));
}

VCString ProgramPath() {
  char path[MAX_PATH + 1];
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  return length == 0 ? VCString() : VCString(path, length);
}

}  // namespace service_platform
