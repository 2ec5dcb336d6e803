// The service base under the Windows service control manager: create,
// describe, query and delete a service (what Wine's manager supports too).
// StartServiceA outside the manager is not tested: Wine waits ten seconds
// before it refuses.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/service/service_errors.h>

#include "service/test_service.h"

namespace {

// The display name, dependencies ("|" after each) and description the
// manager holds for `name`.
std::string Configuration(const char* name) {
  SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT);
  SC_HANDLE service = OpenServiceA(manager, name, SERVICE_QUERY_CONFIG);
  std::string text;
  alignas(8) char buffer[8192];
  DWORD needed = 0;
  auto* config = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(buffer);
  if (service && QueryServiceConfigA(service, config, sizeof buffer, &needed)) {
    text = config->lpDisplayName;
    for (const char* d = config->lpDependencies; d && *d; d += strlen(d) + 1)
      text += std::string("|") + d;
  }
  auto* description = reinterpret_cast<SERVICE_DESCRIPTIONA*>(buffer);
  if (service && QueryServiceConfig2A(service, SERVICE_CONFIG_DESCRIPTION,
                                      reinterpret_cast<BYTE*>(buffer), sizeof buffer, &needed))
    text += std::string("|") + (description->lpDescription ? description->lpDescription : "");
  CloseServiceHandle(service);
  CloseServiceHandle(manager);
  return text;
}

}  // namespace

TEST(ServiceScm, InstallQueryAndRemove) {
  TestService service("utilkit_scm_svc");
  EXPECT_EQ(Parse(service, {"-i", "utilkit_scm_svc", "-name", "Utilkit Test", "-description",
                            "Answers questions", "-depends", "Tcpip,EventLog"}),
            "utilkit_scm_svc installed\n");
  EXPECT_EQ(service.IsInstalled(), 1);
  // Wine's manager does not give the dependencies back; Windows lists them in between.
  const std::string config = Configuration("utilkit_scm_svc");
  EXPECT_EQ(config.rfind("Utilkit Test|", 0), 0u) << config;
  EXPECT_EQ(config.substr(config.rfind('|')), "|Answers questions") << config;
  EXPECT_EQ(Parse(service, {"-i"}), "utilkit_scm_svc is already installed\n");
  EXPECT_EQ(Parse(service, {"-i", "utilkit_scm_svc"}),
            "utilkit_scm_svc failed to install. Error 1073\n");
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kServiceErrorCreate);
  EXPECT_EQ(VFErrorGetOpSysCode(VFErrorGetLast()), ERROR_SERVICE_EXISTS);
  const std::string removed = Parse(service, {"-u"});
  EXPECT_EQ(removed.rfind("utilkit_scm_svc removed. (You must delete the file (", 0), 0u)
      << removed;
  // Gone (1060), or under Wine possibly still marked for deletion (1072).
  const std::string again = Parse(service, {"-u", "utilkit_scm_svc"});
  EXPECT_TRUE(again == "Could not remove utilkit_scm_svc. Error 1060\n" ||
              again == "Could not remove utilkit_scm_svc. Error 1072\n")
      << again;
  VFErrorClear();
}
