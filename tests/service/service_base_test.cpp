#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>

#include "service/test_service.h"

using Lines = std::vector<std::string>;

TEST(ServiceBase, InitialiseReportsStartAndRunning) {
  TestService service;
  EXPECT_EQ(service.Initialise(), 1);
  EXPECT_EQ(service.State(), 4u);
  EXPECT_EQ(service.Lines(),
            (Lines{"3|VCUServiceBase::Initialise|Entering VCSericeBase::Initialise",
                   "3|VCUServiceBase::SetStatus|VCUServiceBase::SetStatus(0, 2)", "OnInit",
                   "3|VCUServiceBase::SetStatus|VCUServiceBase::SetStatus(0, 4)",
                   "3|VCUServiceBase::Initialise|Leaving VCSericeBase::Initialise"}));
}

TEST(ServiceBase, InitialiseFailsWhenOnInitReturnsZero) {
  TestService service;
  service.initResult = 0;
  EXPECT_EQ(service.Initialise(), 0);
  EXPECT_EQ(service.State(), 1u);
  Lines lines = service.Lines();
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[3], "3|VCUServiceBase::SetStatus|VCUServiceBase::SetStatus(0, 1)");
  EXPECT_EQ(lines[4], "2|VCUServiceBase::Initialise|Failed service initialisation");
}

TEST(ServiceBase, HandlerStopsShutsDownOrOnlyReports) {
  TestService service;
  EXPECT_FALSE(service.WaitForStop(1));
  VCUServiceBase::Handler(4);
  EXPECT_EQ(service.Lines(),
            (Lines{"3|VCUServiceBase::Handler|VCUServiceBase::Handler - OpCode = 4",
                   "2|VCUServiceBase::Handler|Leaving Handler, updating status"}));
  EXPECT_FALSE(service.IsStopRequested());
  VCUServiceBase::Handler(5);
  EXPECT_EQ(service.Lines()[3], "OnShutdown");
  EXPECT_EQ(service.State(), 1u);
  TestService stopped("second");
  VCUServiceBase::Handler(1);
  EXPECT_EQ(stopped.Lines(),
            (Lines{"3|VCUServiceBase::Handler|VCUServiceBase::Handler - OpCode = 1",
                   "3|VCUServiceBase::SetStatus|VCUServiceBase::SetStatus(0, 3)", "OnStop",
                   "2|VCUServiceBase::Handler|Leaving Handler, updating status"}));
  EXPECT_EQ(stopped.State(), 3u);
  EXPECT_TRUE(stopped.WaitForStop(0));
}

TEST(ServiceBase, BaseHooksAndDefaults) {
  LogService service(std::string(70, 'n').c_str());
  EXPECT_EQ(VCUServiceBase::m_pThis, &service);
  EXPECT_EQ(std::string(service.Name()), std::string(63, 'n'));
  EXPECT_EQ(service.GetLogLevel(), 4);
  EXPECT_EQ(service.OnInit(), 1);
  service.Run();
  service.OnStop();
  service.OnShutdown();
  EXPECT_EQ(service.GetExitCode(), 0u);
  EXPECT_EQ(
      service.Lines(),
      (Lines{"2|VCUServiceBase::OnInit|In VCUServiceBase::OnInit - no user OnInit function",
             "2|VCUServiceBase::Run|In VCUServiceBase::Run - no user Run function",
             "2|VCUServiceBase::OnStop|In VCUServiceBase::OnStop - no user OnStop function"}));
}

TEST(ServiceBase, UnrecognisedArgumentsRunTheService) {
  TestService service;
  char prog[] = "prog", other[] = "-x", install[] = "-i";
  char* none[] = {prog, nullptr};
  char* wrong[] = {prog, other, install, nullptr};
  EXPECT_EQ(service.ParseStandardArgs(1, none), 0);
  EXPECT_EQ(service.ParseStandardArgs(3, wrong), 0);
  EXPECT_EQ(service.Lines(),
            (Lines{"3|VCUServiceBase::ParseStandardArgs|Parsing arguments",
                   "3|VCUServiceBase::ParseStandardArgs|Parsing arguments",
                   "3|VCUServiceBase::ParseStandardArgs|Arguments not recognised"}));
}

TEST(ServiceBase, ActualListIsDoubleZeroTerminated) {
  VCStringArray names;
  EXPECT_EQ(LogService::GetActualList(names).GetLength(), 0);
  names.Add("Tcpip");
  names.Add("Event Log");
  VCString list = LogService::GetActualList(names);
  EXPECT_EQ(list.str(), std::string("Tcpip\0Event Log\0", 16));
  EXPECT_EQ(list.c_str()[16], '\0');
}
