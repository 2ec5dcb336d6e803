// The service base under systemd: unit files, the notification protocol and
// a control dispatcher that turns SIGTERM and SIGINT into stop requests.
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <thread>

#include <utilkit/base/preference_system.h>
#include <utilkit/service/service_errors.h>

#include "service/service_platform.h"

namespace {

// The systemd notification socket, open between RegisterHandler and the end
// of RunDispatcher (one service per process).
std::atomic<int> g_notifyFd{-1};
sockaddr_un g_notifyAddress{};
socklen_t g_notifyLength = 0;

VCString UnitDirectory() {
  return VCPreferenceSystem::GetStringValue(kServiceUnitDirectoryPreference, "/etc/systemd/system");
}

// True when `directory` is a directory that allows `mode` (access(2)); else errno is set.
bool DirectoryUsable(const VCString& directory, int mode) {
  struct stat info {};
  if (stat(directory, &info) != 0) return false;
  if (!S_ISDIR(info.st_mode)) {
    errno = ENOTDIR;
    return false;
  }
  return access(directory, mode) == 0;
}

// A unit name of the characters systemd allows; EINVAL otherwise.
bool ValidUnitName(const char* name) {
  if (name == nullptr || *name == '\0' || std::strcmp(name, ".") == 0 ||
      std::strcmp(name, "..") == 0) {
    errno = EINVAL;
    return false;
  }
  for (const char* c = name; *c; ++c) {
    if (!std::isalnum(static_cast<unsigned char>(*c)) && !std::strchr(":-_.@\\", *c)) {
      errno = EINVAL;
      return false;
    }
  }
  return true;
}

VCString UnitPath(const VCString& directory, const char* name) {
  return directory + "/" + name + ".service";
}

// `text` as a unit-file value: specifiers and variables escaped; false
// (EINVAL) for a line break, which would end the setting.
bool UnitValue(VCString text, VCString& value) {
  if (text.Find('\n') >= 0 || text.Find('\r') >= 0) {
    errno = EINVAL;
    return false;
  }
  text.Replace("%", "%%");
  value = text;
  return true;
}

// The unit file of a service that runs this program.
bool UnitText(const VCStringArray& depends, const VCString& displayName,
              const VCString& description, VCString& text) {
  VCString title = displayName, path, units;
  if (!description.IsEmpty()) title += " - " + description;
  const VCString program = service_platform::ProgramPath();
  if (program.IsEmpty()) errno = ENOENT;
  if (program.IsEmpty() || !UnitValue(title, title) || !UnitValue(program, path)) return false;
  path.Replace("$", "$$");
  path.Replace("\\", "\\\\");
  if (path.Find(' ') >= 0) {
    path.Replace("\"", "\\\"");
    path = "\"" + path + "\"";
  }
  for (int32_t i = 0; i < depends.GetSize(); ++i) {
    if (!ValidUnitName(depends[i])) return false;
    units += (i ? " " : "") + depends[i] + (depends[i].Find('.') < 0 ? ".service" : "");
  }
  text = "[Unit]\nDescription=" + title + "\n";
  if (!units.IsEmpty()) text += "After=" + units + "\nRequires=" + units + "\n";
  text += "\n[Service]\nType=notify\nExecStart=" + path + "\nRestart=on-failure\n";
  text += "\n[Install]\nWantedBy=multi-user.target\n";
  return true;
}

// Writes `text` to the new file `path` (EEXIST when it exists); a partly
// written file is removed. errno tells the failure.
bool WriteNewFile(const VCString& path, const VCString& text) {
  int fd = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  const char* at = text.c_str();
  size_t left = static_cast<size_t>(text.GetLength());
  while (left > 0) {
    ssize_t n = write(fd, at, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    at += n;
    left -= static_cast<size_t>(n);
  }
  const int error = left > 0 ? (errno ? errno : EIO) : (close(fd) == 0 ? 0 : errno);
  if (left > 0) close(fd);
  if (error == 0) return true;
  unlink(path);
  errno = error;
  return false;
}

void CloseNotifySocket() {
  const int fd = g_notifyFd.exchange(-1);
  if (fd >= 0) close(fd);
}

// State names of the status record, 1 to 7.
constexpr const char* kStateNames[] = {"STOPPED", "START_PENDING",    "STOP_PENDING",
                                       "RUNNING", "CONTINUE_PENDING", "PAUSE_PENDING",
                                       "PAUSED"};

}  // namespace

int VCUServiceBase::Install(char* name, VCStringArray depends, VCString displayName,
                            VCString description) {
  constexpr const char* kWhere = "VCUServiceBase::Install";
  const VCString directory = UnitDirectory();
  if (!DirectoryUsable(directory, W_OK | X_OK)) {
    SetOpSysError(kServiceErrorOpenManager, kWhere);
    return 0;
  }
  VCString text;
  if (!ValidUnitName(name) || !UnitText(depends, displayName, description, text) ||
      !WriteNewFile(UnitPath(directory, name), text)) {
    SetOpSysError(kServiceErrorCreate, kWhere);
    return 0;
  }
  return 1;
}

int VCUServiceBase::Uninstall(char* name) {
  constexpr const char* kWhere = "VCUServiceBase::Uninstall";
  const VCString directory = UnitDirectory();
  if (!DirectoryUsable(directory, W_OK | X_OK)) {
    SetOpSysError(kServiceErrorOpenManager, kWhere);
    return 0;
  }
  if (!ValidUnitName(name) || unlink(UnitPath(directory, name)) != 0) {
    SetOpSysError(kServiceErrorDelete, kWhere);
    return 0;
  }
  return 1;
}

int VCUServiceBase::IsInstalled() {
  const VCString directory = UnitDirectory();
  if (!DirectoryUsable(directory, X_OK)) {
    SetOpSysError(kServiceErrorOpenManager, "VCUServiceBase::IsInstalled");
    return 0;
  }
  struct stat info {};
  return ValidUnitName(m_szServiceName) && stat(UnitPath(directory, m_szServiceName), &info) == 0 &&
         S_ISREG(info.st_mode);
}

namespace service_platform {

bool RunDispatcher(const char* name) {
  sigset_t stopSignals, previous;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGTERM);
  sigaddset(&stopSignals, SIGINT);
  int error = pthread_sigmask(SIG_BLOCK, &stopSignals, &previous);
  if (error != 0) {
    errno = error;
    return false;
  }
  const int signals = signalfd(-1, &stopSignals, SFD_CLOEXEC);
  const int finished = signals < 0 ? -1 : eventfd(0, EFD_CLOEXEC);
  std::thread service;
  error = errno;
  if (finished >= 0) {
    try {
      service = std::thread([name, finished] {
        char serviceName[64];
        std::snprintf(serviceName, sizeof serviceName, "%s", name);
        char* argv[] = {serviceName, nullptr};
        VCUServiceBase::ServiceMain(1, argv);
        const uint64_t one = 1;
        while (write(finished, &one, sizeof one) < 0 && errno == EINTR) {
        }
      });
    } catch (const std::system_error& e) {
      error = e.code().value();
    }
  }
  pollfd waits[2] = {{signals, POLLIN, 0}, {finished, POLLIN, 0}};
  while (service.joinable()) {
    if (poll(waits, 2, -1) < 0) {
      if (errno == EINTR) continue;
      break;  // nothing left to wait on but the service itself
    }
    if (waits[1].revents) break;
    signalfd_siginfo info;
    if (read(signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
      VCUServiceBase::Handler(1);
    }
  }
  const bool started = service.joinable();
  if (started) service.join();
  CloseNotifySocket();
  if (finished >= 0) close(finished);
  if (signals >= 0) close(signals);
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  errno = started ? 0 : error;
  return started;
}

uintptr_t RegisterHandler(const char*) {
  CloseNotifySocket();
  const char* target = std::getenv("NOTIFY_SOCKET");
  if (target == nullptr || *target == '\0') return static_cast<uintptr_t>(getpid());
  const size_t length = std::strlen(target);
  if ((target[0] != '/' && target[0] != '@') || length >= sizeof g_notifyAddress.sun_path) {
    errno = target[0] == '/' || target[0] == '@' ? ENAMETOOLONG : EINVAL;
    return 0;
  }
  const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return 0;
  g_notifyAddress = sockaddr_un{};
  g_notifyAddress.sun_family = AF_UNIX;
  std::memcpy(g_notifyAddress.sun_path, target, length);
  if (target[0] == '@') g_notifyAddress.sun_path[0] = '\0';  // abstract name
  g_notifyLength = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
  g_notifyFd = fd;  // published last: the address is complete when it is seen
  return static_cast<uintptr_t>(getpid());
}

void ReportStatus(uintptr_t handle, const VTServiceStatus& status) {
  const int fd = g_notifyFd;
  if (handle == 0 || fd < 0) return;
  const int saved = errno;
  const uint32_t state = status.currentState;
  VCString message;
  if (state == 4) message = "READY=1\n";
  if (state == 3) message = "STOPPING=1\n";
  message += state >= 1 && state <= 7 ? VCString("STATUS=") + kStateNames[state - 1]
                                      : VCString::Formatted("STATUS=%u", state);
  sendto(fd, message.c_str(), static_cast<size_t>(message.GetLength()), MSG_NOSIGNAL,
         reinterpret_cast<const sockaddr*>(&g_notifyAddress), g_notifyLength);
  errno = saved;
}

int32_t SystemError() {
  return errno;
}

void SetSystemError(int32_t code) {
  errno = code;
}

VCString ProgramPath() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0 || static_cast<size_t>(length) >= sizeof path) return VCString();
  return VCString(path, static_cast<size_t>(length));
}

}  // namespace service_platform
