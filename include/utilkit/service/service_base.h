// VCUServiceBase: the base class of a program that runs as an operating-system
// service.
//
// A server program derives from this class, overrides OnInit, Run, OnStop,
// OnShutdown and PutLogMessage, and hands its command line over in main:
//
//   class EchoService : public VCUServiceBase {
//    public:
//     EchoService() : VCUServiceBase("EchoService") {}
//     void Run() override { while (!WaitForStop(500)) Serve(); }
//   };
//   int main(int argc, char** argv) {
//     EchoService service;
//     if (service.ParseStandardArgs(argc, argv)) return 0;  // "-i" or "-u" done
//     return service.StartServiceA() ? 0 : 1;
//   }
//
// Command line: "-i" installs the service, "-u" removes it (either compared
// without regard to case); after it may come the service name (at most 63
// characters) and, for "-i", the options "-name <display name>",
// "-description <text>" (both default "Vexa Server") and "-depends a,b,c".
//
// Windows: the service control manager installs, removes, starts and stops
// the program; StartServiceA hands the process to its control dispatcher.
//
// Linux (systemd): "-i" writes the unit file "<name>.service" into the unit
// directory, the preference kServiceUnitDirectoryPreference (default
// "/etc/systemd/system"); the administrator then runs `systemctl
// daemon-reload` and `systemctl enable --now <name>`. The unit reads
//   [Unit]     Description=<display name> - <description>
//              After= and Requires= the "-depends" units (".service" added to a
//              name without a dot)
//   [Service]  Type=notify, ExecStart=<this program> (from /proc/self/exe,
//              quoted when it holds a blank), Restart=on-failure
//   [Install]  WantedBy=multi-user.target
// A name or dependency outside the unit-name characters (letters, digits,
// ":-_.@\") or a line break in a text fails with EINVAL. Opening the
// "manager" means finding the unit directory (writable, for install and
// remove); an existing unit file is not replaced. "-u" deletes the unit file,
// IsInstalled tests that it exists.
// StartServiceA plays the control dispatcher: it blocks SIGTERM and SIGINT,
// runs ServiceMain on a service thread (the one thread the library ever
// starts; threads started from Run inherit the blocked signals) and on the
// calling thread takes each of these signals through a signalfd and calls
// Handler(1). It returns when ServiceMain has returned. Threads that the
// program started before must block the two signals themselves.
// The states go to systemd through the notification protocol when
// NOTIFY_SOCKET is set: "STATUS=<state name>" for every report, with
// "READY=1" when running and "STOPPING=1" when stopping. systemd sends the
// same SIGTERM at shutdown as on a stop, so on Linux OnShutdown is reached
// only when the program calls Handler(5) itself; put shutdown work in OnStop.
//
// Threads: ServiceMain, Run and OnInit run on the service thread, Handler
// (and so OnStop and OnShutdown) on the dispatcher's thread, possibly while
// Run works. Run learns of a stop request through WaitForStop or
// IsStopRequested. Log output is serialised by m_LogLock. Failures inside
// ServiceMain go on the service thread's error stack.
//
// Ownership: one service object per process; m_pThis points to the newest
// one until it is destroyed. The object must outlive StartServiceA.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include <utilkit/base/export.h>
#include <utilkit/base/thread_sync.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>

// Log level of a message: the smaller, the more important. The library logs
// failures at kServiceLogFailure and its trace at kServiceLogTrace; a derived
// PutLogMessage usually writes what is at or below GetLogLevel().
using VDCULogLevel = int32_t;
inline constexpr VDCULogLevel kServiceLogFailure = 2;
inline constexpr VDCULogLevel kServiceLogTrace = 3;
inline constexpr VDCULogLevel kServiceLogDefault = 4;

// The preference naming the Linux unit directory (a text).
inline constexpr const char* kServiceUnitDirectoryPreference =
    "/Libraries/utilkit/ServiceUnitDirectory";

// The service's status record, laid out as the service control manager's
// SERVICE_STATUS; fields are atomic since two threads report.
struct VTServiceStatus {
  std::atomic<uint32_t> serviceType{16};      // SERVICE_WIN32_OWN_PROCESS
  std::atomic<uint32_t> currentState{1};      // 1 stopped, 2 start, 3 stop pending, 4 running
  std::atomic<uint32_t> controlsAccepted{1};  // SERVICE_ACCEPT_STOP
  std::atomic<uint32_t> win32ExitCode{0};
  std::atomic<uint32_t> serviceSpecificExitCode{0};
  std::atomic<uint32_t> checkPoint{0};
  std::atomic<uint32_t> waitHint{0};
};

class UTILKIT_API VCUServiceBase {
 public:
  // Stores `serviceName` (at most 63 characters kept; null is "") and makes
  // this object the process's service (m_pThis).
  explicit VCUServiceBase(const char* serviceName);
  VCUServiceBase(const VCUServiceBase&) = delete;
  VCUServiceBase& operator=(const VCUServiceBase&) = delete;
  virtual ~VCUServiceBase();

  // The main work, on the service thread; returning stops the service.
  // The base only logs that there is none.
  virtual void Run();
  // Start-up work; 0 fails the start. The base logs and returns 1.
  virtual int OnInit();
  // A stop request (Handler(1)); Run should then return soon. Base: logs.
  virtual void OnStop();
  // A system shutdown (Handler(5)). Base: nothing.
  virtual void OnShutdown();
  virtual void SetLogLevel(VDCULogLevel level);
  virtual VDCULogLevel GetLogLevel();

  // Carries out "-i"/"-u" (see above), printing the outcome on standard
  // output; 1 when it did, 0 when the program is to run as a service (no
  // arguments, or not recognised). Failures are on the error stack too.
  int ParseStandardArgs(int argc, char** argv);
  // Runs the service until it stops; 1 then, 0 with kServiceErrorStart when
  // the dispatcher cannot start (on Windows: not started as a service).
  int StartServiceA();

  // True when this object's service is installed; false also with
  // kServiceErrorOpenManager when the manager cannot be opened.
  int IsInstalled();
  // Installs this object's service with the default texts; 0 on failure
  // (kServiceErrorOpenManager, kServiceErrorCreate).
  int Install();
  // Removes this object's service; 0 on failure, as the static Uninstall.
  int Uninstall();
  // Installs the service `name` for this program; 0 on failure with
  // kServiceErrorOpenManager or kServiceErrorCreate (also when it exists).
  // A description the manager refuses prints "Service description not set".
  static int Install(char* name, VCStringArray depends, VCString displayName, VCString description);
  // Removes the service `name`; 1 only when it was deleted, else 0 with
  // kServiceErrorOpenManager or kServiceErrorDelete (Windows: none when the
  // service does not exist).
  static int Uninstall(char* name);

  // Sets and reports the current state (1 to 4 as in VTServiceStatus).
  void SetStatus(unsigned long state);
  // Reports start pending and calls OnInit; then reports running and
  // returns 1, or, when OnInit returned 0, reports stopped and returns 0.
  int Initialise();
  // The service's entry point on the service thread (the dispatcher calls
  // it): registers Handler (kServiceErrorRegisterHandler), then Initialise
  // and Run, and reports stopped.
  static void ServiceMain(unsigned long argc, char** argv);
  // A control request: 1 stop, 5 shutdown, any other only re-reports.
  static void Handler(unsigned long opcode);
  // The exit code in the status record.
  unsigned long GetExitCode();

  // Waits up to `milliseconds` for a stop or shutdown request; true when
  // one has come (at once when it came earlier).
  bool WaitForStop(int32_t milliseconds);
  bool IsStopRequested();

  static VCUServiceBase* m_pThis;

 protected:
  // Writes one log line. The base only takes and releases m_LogLock; a
  // derived class holds m_LogLock while it writes.
  virtual void PutLogMessage(VDCULogLevel level, const char* location, const char* text);
  // The names joined in the service manager's form: each followed by a
  // zero byte, the whole ended by a second one (the text's own end).
  static VCString GetActualList(VCStringArray names);

  char m_szServiceName[64];
  uintptr_t m_hServiceStatus = 0;
  VTServiceStatus m_Status;
  VCThreadSync m_LogLock;
  VDCULogLevel m_LogLevel = kServiceLogDefault;

 private:
  // Pushes `code` at `location` with the system's last error, which it keeps.
  static void SetOpSysError(int code, const char* location);
  void RequestStop();
  void PrintRemoveResult(char* name, int removed);
  void PrintInstallResult(char* name, int installed);

  std::mutex m_stopMutex;
  std::condition_variable m_stopSignal;
  bool m_stopRequested = false;
};
