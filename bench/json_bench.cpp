// The JSON library beside two that are in general use: building a tree from a text of about 50 MB
// (5 MB for the growth of the cost), releasing it again, and printing it; and the building and
// searching of one large object.
#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "json/JsonValue.h"
#include "json/ScopedJson.h"

namespace {

constexpr std::size_t kDocumentUnit = 1000000;
constexpr std::size_t kSmallDocument = 5;
constexpr std::size_t kLargeDocument = 50;

// Records as programs exchange them: names that come again, texts of all lengths with an escape
// here and there, whole and fractional numbers, nested arrays and objects.
std::string makeDocument(std::size_t size) {
  std::string text = "[";
  for (unsigned i = 0; text.size() < size; ++i) {
    const std::string number = std::to_string(i);
    for (const std::string& part :
         {std::string(i == 0 ? "" : ","),
          std::string(R"({"id":)"),
          number,
          std::string(R"(,"name":"host )"),
          number,
          std::string(R"(.example.net","active":)"),
          std::string(i % 3 == 0 ? "true" : "false"),
          std::string(R"(,"load":)"),
          std::to_string(i % 997),
          std::string("."),
          std::to_string(i % 89),
          std::string(R"(,"parent":null,"note":"a \"quoted\" text, with\ttabs and )"),
          std::string(i % 61, 'x'),
          std::string(R"(","ports":[)"),
          std::to_string(i % 65536),
          std::string(R"(,443,8096,-17],"position":{"x":)"),
          std::to_string(i * 7919 % 100003),
          std::string(R"(.125,"y":-0.)"),
          number,
          std::string(R"(,"labels":["a","bc","","rack )"),
          number,
          std::string(R"("]}})")}) {
      text += part;
    }
  }
  return text + "]";
}

const std::string& document(const benchmark::State& state) {
  static const std::string small = makeDocument(kSmallDocument * kDocumentUnit);
  static const std::string large = makeDocument(kLargeDocument * kDocumentUnit);
  return state.range(0) == static_cast<std::int64_t>(kSmallDocument) ? small : large;
}

tunadm::ScopedJson parseOwn(const std::string& text) {
  return tunadm::ScopedJson(
      tunadm::parseJson(text.data(), static_cast<std::ptrdiff_t>(text.size())));
}

// Each of the three parses into a tree of its own and frees it.
void parse_tunadm(benchmark::State& state) {
  const std::string& text = document(state);
  while (state.KeepRunning()) {
    if (!parseOwn(text)) state.SkipWithError("not parsed");
  }
}

void parse_nlohmann(benchmark::State& state) {
  const std::string& text = document(state);
  while (state.KeepRunning()) benchmark::DoNotOptimize(nlohmann::json::parse(text));
}

void parse_rapidjson(benchmark::State& state) {
  const std::string& text = document(state);
  while (state.KeepRunning()) {
    rapidjson::Document tree;
    if (tree.Parse(text.data(), text.size()).HasParseError()) state.SkipWithError("not parsed");
  }
}

void print_tunadm(benchmark::State& state) {
  const tunadm::ScopedJson tree = parseOwn(document(state));
  while (state.KeepRunning()) {
    std::string text;
    tunadm::printJson(tree.get(), &text);
    benchmark::DoNotOptimize(text.data());
  }
}

void print_nlohmann(benchmark::State& state) {
  const nlohmann::json tree = nlohmann::json::parse(document(state));
  while (state.KeepRunning()) benchmark::DoNotOptimize(tree.dump());
}

void print_rapidjson(benchmark::State& state) {
  rapidjson::Document tree;
  tree.Parse(document(state).data(), document(state).size());
  while (state.KeepRunning()) {
    rapidjson::StringBuffer text;
    rapidjson::Writer<rapidjson::StringBuffer> writer(text);
    tree.Accept(writer);
    benchmark::DoNotOptimize(text.GetString());
  }
}

void members_tunadm(benchmark::State& state) {
  while (state.KeepRunning()) {
    const tunadm::ScopedJson object(tunadm::makeObject());
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      tunadm::setMember(object.get(), "member " + std::to_string(i), tunadm::makeNumber(1));
    }
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      if (tunadm::findMember(object.get(), "member " + std::to_string(i)) != i) {
        state.SkipWithError("not found");
      }
    }
  }
}

void forDocuments(benchmark::internal::Benchmark* bench) {
  bench->Arg(static_cast<std::int64_t>(kSmallDocument))
      ->Arg(static_cast<std::int64_t>(kLargeDocument))
      ->Unit(benchmark::kMillisecond);
}

BENCHMARK(parse_tunadm)->Apply(forDocuments);
BENCHMARK(parse_nlohmann)->Apply(forDocuments);
BENCHMARK(parse_rapidjson)->Apply(forDocuments);
BENCHMARK(print_tunadm)->Apply(forDocuments);
BENCHMARK(print_nlohmann)->Apply(forDocuments);
BENCHMARK(print_rapidjson)->Apply(forDocuments);
BENCHMARK(members_tunadm)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
