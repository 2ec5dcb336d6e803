// Checks the Windows services that the socket I/O and the service base are
// built on: a loopback exchange over Windows Sockets and the create,
// describe, open and delete cycle of the service control manager.
#include <winsock2.h>
#include <ws2tcpip.h>
// winsock2.h must come before windows.h.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace {

class WinsockTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WSADATA data;
    ASSERT_EQ(WSAStartup(MAKEWORD(1, 1), &data), 0);
  }
  void TearDown() override { WSACleanup(); }
};

TEST_F(WinsockTest, LoopbackExchange) {
  SOCKET server = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  ASSERT_NE(server, INVALID_SOCKET);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = 0;
  ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(server, 1), 0);
  int length = sizeof address;
  ASSERT_EQ(getsockname(server, reinterpret_cast<sockaddr*>(&address), &length), 0);

  SOCKET client = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  ASSERT_NE(client, INVALID_SOCKET);
  ASSERT_EQ(connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  SOCKET accepted = accept(server, nullptr, nullptr);
  ASSERT_NE(accepted, INVALID_SOCKET);

  const char message[] = "hello";
  ASSERT_EQ(send(client, message, sizeof message, 0), static_cast<int>(sizeof message));
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(accepted, &readable);
  timeval limit{5, 0};
  ASSERT_EQ(select(0, &readable, nullptr, nullptr, &limit), 1);
  char received[16] = {};
  ASSERT_EQ(recv(accepted, received, sizeof received, 0), static_cast<int>(sizeof message));
  EXPECT_STREQ(received, "hello");

  // A read with nothing pending times out in select.
  FD_ZERO(&readable);
  FD_SET(client, &readable);
  timeval shortLimit{0, 50000};
  EXPECT_EQ(select(0, &readable, nullptr, nullptr, &shortLimit), 0);

  closesocket(accepted);
  closesocket(client);
  closesocket(server);
}

TEST(ServiceControlManagerTest, CreateDescribeOpenDelete) {
  SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
  ASSERT_NE(manager, nullptr) << GetLastError();
  const char* name = "utilkit_platform_test";
  char path[MAX_PATH] = {};
  ASSERT_GT(GetModuleFileNameA(nullptr, path, MAX_PATH), 0u);

  // A run that died half way may have left the service behind.
  if (SC_HANDLE stale = OpenServiceA(manager, name, SERVICE_ALL_ACCESS)) {
    DeleteService(stale);
    CloseServiceHandle(stale);
  }
  SC_HANDLE service =
      CreateServiceA(manager, name, "utilkit platform test", SERVICE_ALL_ACCESS,
                     SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, path,
                     nullptr, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(service, nullptr) << GetLastError();
  std::string text = "A service made by the platform test";
  SERVICE_DESCRIPTIONA description{text.data()};
  EXPECT_TRUE(ChangeServiceConfig2A(service, SERVICE_CONFIG_DESCRIPTION, &description));
  CloseServiceHandle(service);

  service = OpenServiceA(manager, name, SERVICE_ALL_ACCESS);
  ASSERT_NE(service, nullptr) << GetLastError();
  EXPECT_TRUE(DeleteService(service));
  CloseServiceHandle(service);
  CloseServiceHandle(manager);
}

}  // namespace
