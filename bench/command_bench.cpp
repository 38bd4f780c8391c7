// What a command does besides its work: finding it, binding its words, rendering its result. The
// allocations are counted.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandLookup.h"
#include "core/CommandCore.h"
#include "json/JsonValue.h"
#include "json/ScopedJson.h"
#include "json/ScopedRelease.h"

namespace {

std::size_t allocations = 0;

void bindAndRender(const std::vector<std::string>& line) {
  std::vector<std::string> words = line;
  int consumed = 0;
  const auto command = tunadm::lookUpCommand(&words, &consumed);
  const tunadm::ScopedJson array(tunadm::makeArray());
  for (const std::string& word : words) {
    tunadm::appendString(array.get(), std::string_view(word));
  }
  const tunadm::Status bound =
      tunadm::bindCommandWords(command.get(), array.get(), static_cast<std::size_t>(consumed));
  if (!bound.ok()) std::abort();
  command->statusField().status().reset();  // a success shows every field
  command->render([](std::string_view text) { benchmark::DoNotOptimize(text.data()); });
}

void run(benchmark::State& state, const std::vector<std::string>& words) {
  const std::size_t before = allocations;
  while (state.KeepRunning()) bindAndRender(words);
  state.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations - before),
                                                     benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(run, service_status, {"service", "status"});
BENCHMARK_CAPTURE(run, profile_create,
                  {"profile", "create", "office", "helmsman=10.0.0.1:8096", "network=eth0",
                   "invitation=abc", "allow_rename=no"});

}  // namespace

// Not inlined, or the compiler sees free meet a pointer from new and warns.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  std::abort();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

BENCHMARK_MAIN();
