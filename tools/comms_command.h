// The many-clients mode of `utilkit serve` (--clients N, over
// VCTCBServerComms) and the message form of `utilkit send` (--form).
//
//   utilkit serve --port 5000 --clients 100 --time-limit 60
//   utilkit send --port 5000 --form job=resample --form signal=@run7.bin
#pragma once

#include <string>
#include <vector>

// Serves up to `maxClients` clients at once on one thread: prints each
// request and answers it with itself or with the `reply` file's bytes, in
// the request's framing. Stops after `count` requests or `timeLimit` seconds
// (0: no limit). Returns the exit status (1: cannot listen or read `reply`).
int RunServeMany(int port, const std::string& address, const std::string& reply, int count,
                 int timeLimit, int maxClients);

// Sends a message form made of `fields` ("name=value", or "name=@path" for
// a file part) and prints the answer's parts. Returns 0 when answered, 1
// for a bad field, an unreadable file or a malformed answer, and -1 when a
// socket operation failed (its record is on the error stack).
int RunSendForm(const std::string& host, int port, int timeout,
                const std::vector<std::string>& fields);
