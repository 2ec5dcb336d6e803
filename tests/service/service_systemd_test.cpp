// The service base under systemd: unit files in a temporary unit directory,
// and the state sequence read from a NOTIFY_SOCKET the test listens on.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/preference_system.h>
#include <utilkit/service/service_errors.h>

#include "service/test_service.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class ServiceSystemd : public testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/utilkit_units_XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    m_dir = pattern;
    VCPreferenceSystem::SetStringValue(kServiceUnitDirectoryPreference, m_dir.c_str());
    VFErrorClear();
  }
  void TearDown() override {
    fs::remove_all(m_dir);
    VCPreferenceSystem::Remove(kServiceUnitDirectoryPreference);
    unsetenv("NOTIFY_SOCKET");
    VFErrorClear();
  }

  std::string Unit(const std::string& name) {
    std::ifstream in(m_dir + "/" + name + ".service");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  static void ExpectError(int32_t code, const char* message, const char* location, int os) {
    const VCErrorRecord* e = VFErrorGetLast();
    EXPECT_EQ(VFErrorGetCode(e), code);
    EXPECT_STREQ(VFErrorGetMessage(e), message);
    EXPECT_STREQ(VFErrorGetLocation(e), location);
    EXPECT_EQ(VFErrorGetOpSysCode(e), os);
    VFErrorClear();
  }
  // Listens as systemd would: NOTIFY_SOCKET names a datagram socket in the unit directory.
  int Listen() {
    std::string path = m_dir + "/notify";
    int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    setenv("NOTIFY_SOCKET", path.c_str(), 1);
    return fd;
  }
  static Lines Received(int fd) {
    Lines messages;
    char buffer[256];
    for (ssize_t n; (n = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT)) > 0;)
      messages.emplace_back(buffer, static_cast<size_t>(n));
    close(fd);
    return messages;
  }

  std::string m_dir;
  const std::string m_program = fs::read_symlink("/proc/self/exe").string();
};

TEST_F(ServiceSystemd, InstallWritesUnitAndUninstallRemovesIt) {
  TestService service;
  EXPECT_EQ(Parse(service, {"-I", "echo_svc", "-name", "Echo 100%", "-description",
                            "Answers 50% of questions", "-depends", "net, db.socket"}),
            "echo_svc installed\n");
  EXPECT_EQ(Unit("echo_svc"),
            "[Unit]\n"
            "Description=Echo 100%% - Answers 50%% of questions\n"
            "After=net.service db.socket\n"
            "Requires=net.service db.socket\n"
            "\n[Service]\nType=notify\nExecStart=" +
                m_program +
                "\nRestart=on-failure\n"
                "\n[Install]\nWantedBy=multi-user.target\n");
  EXPECT_EQ(Parse(service, {"-i", "echo_svc"}), "echo_svc failed to install. Error 17\n");
  ExpectError(kServiceErrorCreate, "Error creating service", "VCUServiceBase::Install", EEXIST);
  EXPECT_EQ(Parse(service, {"-U", "echo_svc"}),
            "echo_svc removed. (You must delete the file (" + m_program + ") yourself.)\n");
  EXPECT_FALSE(fs::exists(m_dir + "/echo_svc.service"));
  EXPECT_EQ(Parse(service, {"-u", "echo_svc"}), "Could not remove echo_svc. Error 2\n");
  ExpectError(kServiceErrorDelete, "Error deleting service", "VCUServiceBase::Uninstall", ENOENT);
  EXPECT_EQ(Parse(service, {"-i", "../escape"}), "../escape failed to install. Error 22\n");
  ExpectError(kServiceErrorCreate, "Error creating service", "VCUServiceBase::Install", EINVAL);
}

TEST_F(ServiceSystemd, OwnNameDefaultsAndLimits) {
  TestService service("own_svc");
  EXPECT_EQ(Parse(service, {"-u"}), "own_svc is not installed\n");
  EXPECT_EQ(Parse(service, {"-i"}), "own_svc installed\n");
  EXPECT_EQ(service.IsInstalled(), 1);
  EXPECT_NE(Unit("own_svc").find("\nDescription=Vexa Server - Vexa Server\n"), std::string::npos);
  EXPECT_EQ(Parse(service, {"-i"}), "own_svc is already installed\n");
  EXPECT_EQ(Parse(service, {"-u"}),
            "own_svc removed. (You must delete the file (" + m_program + ") yourself.)\n");
  EXPECT_EQ(service.IsInstalled(), 0);
  const std::string longName(70, 'x');
  EXPECT_EQ(Parse(service, {"-i", longName, "-description", "Quoted words", "-name"}),
            longName.substr(0, 63) + " installed\n");
  EXPECT_NE(Unit(longName.substr(0, 63)).find("\nDescription=Vexa Server - Quoted words\n"),
            std::string::npos);
}

TEST_F(ServiceSystemd, MissingUnitDirectoryFailsToOpenTheManager) {
  VCPreferenceSystem::SetStringValue(kServiceUnitDirectoryPreference, (m_dir + "/none").c_str());
  TestService service("svc");
  EXPECT_EQ(Parse(service, {"-i", "svc"}), "svc failed to install. Error 2\n");
  const char* text = "Error opening service control manager";
  ExpectError(kServiceErrorOpenManager, text, "VCUServiceBase::Install", ENOENT);
  EXPECT_EQ(service.Uninstall(), 0);
  ExpectError(kServiceErrorOpenManager, text, "VCUServiceBase::Uninstall", ENOENT);
  EXPECT_EQ(service.IsInstalled(), 0);
  ExpectError(kServiceErrorOpenManager, text, "VCUServiceBase::IsInstalled", ENOENT);
}

TEST_F(ServiceSystemd, SystemdAcceptsTheUnit) {
  if (system("command -v systemd-analyze >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "systemd-analyze is not installed: the unit is not verified";
  TestService service("utilkit_verify");
  ASSERT_EQ(Parse(service, {"-i", "utilkit_verify", "-depends", "network.target"}),
            "utilkit_verify installed\n");
  const std::string command = "systemd-analyze verify " + m_dir + "/utilkit_verify.service 2>&1";
  EXPECT_EQ(system(command.c_str()), 0) << command;
}

TEST_F(ServiceSystemd, StopRequestWhileRunReportsEachState) {
  const int listener = Listen();
  const pthread_t dispatcher = pthread_self();
  TestService service;
  service.work = [dispatcher](TestService& self) {
    pthread_kill(dispatcher, SIGTERM);  // as systemd stops the unit
    while (!self.WaitForStop(5000)) {
    }
  };
  EXPECT_EQ(service.StartServiceA(), 1);
  Lines sent = Received(listener);
  ASSERT_EQ(sent.size(), 5u);
  EXPECT_EQ(sent[0], "STATUS=START_PENDING");
  EXPECT_EQ(sent[1], "READY=1\nSTATUS=RUNNING");
  EXPECT_EQ(sent[2], "STOPPING=1\nSTATUS=STOP_PENDING");
  EXPECT_EQ(sent[4], "STATUS=STOPPED");
  Lines lines = service.Lines();
  ASSERT_GE(lines.size(), 10u);
  EXPECT_EQ(lines[0], "3|VCUServiceBase::StartService|Calling StartServiceCtrlDispatcher");
  EXPECT_EQ(lines[1], "3|VCUServiceBase::ServiceMain|Entering VCUServiceBase::ServiceMain()");
  EXPECT_EQ(lines[3], "3|VCUServiceBase::SetStatus|VCUServiceBase::SetStatus(" +
                          std::to_string(getpid()) + ", 2)");
  EXPECT_EQ(lines.back(),
            "3|VCUServiceBase::StartService|Returned from StartServiceCtrlDispatcher");
  for (const char* line :
       {"OnStop", "3|VCUServiceBase::ServiceMain|Leaving VCUServiceBase::ServiceMain()"})
    EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
}

TEST_F(ServiceSystemd, FailedInitialisationSkipsRun) {
  const int listener = Listen();
  TestService service;
  service.initResult = 0;
  EXPECT_EQ(service.StartServiceA(), 1);
  EXPECT_EQ(Received(listener),
            (Lines{"STATUS=START_PENDING", "STATUS=STOPPED", "STATUS=STOPPED"}));
  Lines lines = service.Lines();
  EXPECT_EQ(std::find(lines.begin(), lines.end(), "Run"), lines.end());
}

TEST_F(ServiceSystemd, DispatcherWithoutDescriptorsFailsToStart) {
  TestService service;
  char prog[] = "prog";
  char* argv[] = {prog, nullptr};
  service.ParseStandardArgs(1, argv);  // the sanitizers' first look at the object needs descriptors
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
  rlimit none = saved;
  none.rlim_cur = 0;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const int started = service.StartServiceA();
  setrlimit(RLIMIT_NOFILE, &saved);
  EXPECT_EQ(started, 0);
  ExpectError(kServiceErrorStart, "Error starting service", "VCUServiceBase::StartService", EMFILE);
  EXPECT_EQ(service.Lines().back(),
            "3|VCUServiceBase::StartService|Returned from StartServiceCtrlDispatcher");
}

TEST_F(ServiceSystemd, UnusableNotifySocketFailsRegistration) {
  setenv("NOTIFY_SOCKET", "relative/notify", 1);
  TestService service;
  char name[] = "utilkit_test_svc";
  char* argv[] = {name, nullptr};
  VCUServiceBase::ServiceMain(1, argv);
  ExpectError(kServiceErrorRegisterHandler, "Failed RegisterServiceCtrlHandler",
              "VCUServiceBase::ServiceMain", EINVAL);
  EXPECT_EQ(service.Lines(),
            Lines{"3|VCUServiceBase::ServiceMain|Entering VCUServiceBase::ServiceMain()"});
}
