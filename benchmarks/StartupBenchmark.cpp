// SPDX-License-Identifier: Apache-2.0
//
// From the start of a process over its first text of an amount of money to its end, beside a
// program that does the same with ICU alone, and one that does nothing. Each repetition is one run.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "benchmarks/Measure.h"

namespace {

constexpr int kRuns = 200;

/// The programs stand beside this one.
std::string pathOf(const char* program) {
  return std::filesystem::read_symlink("/proc/self/exe").replace_filename(program);
}

bool run(const std::string& path) {
  std::string name = path;
  char* arguments[] = {name.data(), nullptr};
  pid_t process = 0;
  if (posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environ) != 0) return false;
  int status = -1;
  return waitpid(process, &status, 0) == process && status == 0;
}

void start(benchmark::State& state, const char* program) {
  const std::string path = pathOf(program);
  rvf::measure(state, [&] {
    if (!run(path)) state.SkipWithError("the program failed");
  });
}

void eachRunAlone(benchmark::internal::Benchmark* each) {
  each->UseRealTime()->Iterations(1)->Repetitions(kRuns)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(start, ours, "MoneyTextOfOurs")
    ->Name("start a process for a money text/ours")
    ->Apply(&eachRunAlone);
BENCHMARK_CAPTURE(start, empty, "EmptyProgram")
    ->Name("start a process for a money text/limit: an empty program")
    ->Apply(&eachRunAlone);
BENCHMARK_CAPTURE(start, icu, "MoneyTextOfICU")
    ->Name("start a process for a money text/peer: ICU")
    ->Apply(&eachRunAlone);

}  // namespace
