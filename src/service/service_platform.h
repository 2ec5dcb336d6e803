// The operating-system half of VCUServiceBase that the portable part calls:
// one implementation in service_platform_posix.cpp (systemd) and one in
// service_platform_win32.cpp (service control manager). The platform files
// also define the members that talk to the manager (Install, Uninstall,
// IsInstalled).
#pragma once

#include <cstdint>

#include <utilkit/base/vc_string.h>
#include <utilkit/service/service_base.h>

namespace service_platform {

// Runs the control dispatcher for the service `name`, which calls
// VCUServiceBase::ServiceMain and Handler, until ServiceMain has returned.
// False with the system's last error set when it cannot start.
bool RunDispatcher(const char* name);
// Registers VCUServiceBase::Handler for `name`; the status handle, or 0 with
// the system's last error set.
uintptr_t RegisterHandler(const char* name);
// Reports `status` to the manager through `handle` (nothing for handle 0).
void ReportStatus(uintptr_t handle, const VTServiceStatus& status);

// The system's last error (GetLastError or errno) and setting it back.
int32_t SystemError();
void SetSystemError(int32_t code);
// The full path of this program's file; "" when it cannot be read.
VCString ProgramPath();

}  // namespace service_platform
