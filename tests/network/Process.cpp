// SPDX-License-Identifier: Apache-2.0
#include "tests/network/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kPatienceAtTheEnd{5};
constexpr int kCannotStart = 127;

std::string joined(const Arguments& arguments) {
  std::string text;
  for (const auto& argument : arguments)
    text += (text.empty() ? "" : " ") + argument;
  return text;
}

struct Pipe {
  Pipe() {
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
  }
  std::array<int, 2> ends{};
};

[[noreturn]] void becomeProgram(const Arguments& arguments, const Environment& environment,
                                pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kCannotStart);
  for (const auto& [name, value] : environment)
    ::setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> pointers;
  for (const auto& argument : arguments)
    pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  ::execvp(pointers[0], pointers.data());
  ::dprintf(STDOUT_FILENO, "cannot start %s: %s\n", pointers[0], std::strerror(errno));
  ::_exit(kCannotStart);
}

int exitStatus(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Process::Process(const Arguments& arguments, const Environment& environment) {
  const Pipe input;
  const Pipe output;
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ == 0) {
    ::dup2(input.ends[0], STDIN_FILENO);
    ::dup2(output.ends[1], STDOUT_FILENO);
    becomeProgram(arguments, environment, parent);
  }
  ::close(input.ends[0]);
  ::close(output.ends[1]);
  input_ = input.ends[1];
  output_ = output.ends[0];
}

Process::~Process() {
  terminate();
  ::close(output_);
}

void Process::writeLine(std::string_view line) {
  const std::string text = std::string(line) + "\n";
  if (::write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::system_error(errno, std::generic_category(), "writing to a program");
  }
}

std::optional<std::string> Process::takeLine() {
  const std::size_t end = buffer_.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = buffer_.substr(0, end);
  buffer_.erase(0, end + 1);
  return line;
}

std::optional<std::string> Process::readLine(Deadline deadline) {
  for (;;) {
    if (auto line = takeLine()) return line;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
    pollfd request{output_, POLLIN, 0};
    if (isExhausted_ || left <= 0) return std::nullopt;
    if (::poll(&request, 1, static_cast<int>(left)) <= 0) continue;
    std::array<char, 65536> chunk;
    const ssize_t length = ::read(output_, chunk.data(), chunk.size());
    if (length <= 0) {
      isExhausted_ = true;
    } else {
      buffer_.append(chunk.data(), static_cast<std::size_t>(length));
    }
  }
}

std::string Process::lineWith(const std::vector<std::string>& pieces, Deadline deadline) {
  std::string seen;
  while (const auto line = readLine(deadline)) {
    const auto holds = [&](const std::string& piece) {
      return line->find(piece) != std::string::npos;
    };
    if (std::all_of(pieces.begin(), pieces.end(), holds)) return *line;
    seen += *line + "\n";
  }
  throw std::runtime_error("no line with " + joined(pieces) + "; instead:\n" + seen);
}

void Process::kill(int signal) {
  if (pid_ > 0) ::kill(pid_, signal);
}

int Process::wait() {
  int status = 0;
  if (pid_ <= 0) return 0;
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  ::close(input_);
  return exitStatus(status);
}

void Process::terminate() {
  if (pid_ <= 0) return;
  kill(SIGTERM);
  // The output ends with the program.
  for (const auto deadline = steady_clock::now() + kPatienceAtTheEnd; readLine(deadline);) {
  }
  if (!isExhausted_) kill(SIGKILL);
  wait();
}

std::string run(const Arguments& arguments, const Environment& environment) {
  Process process(arguments, environment);
  std::string output;
  while (const auto line = process.readLine(steady_clock::now() + std::chrono::minutes(1)))
    output += *line + "\n";
  const int status = process.wait();
  if (status == 0) return output;
  throw std::runtime_error("\"" + joined(arguments) + "\" failed with status " +
                           std::to_string(status) + ": " + output);
}

}  // namespace rvf::network
