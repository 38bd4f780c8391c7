// Whatever the fields of a result hold, it is one line that another reader of JSON accepts. The
// lines of the input are what the fields hold, one after the other.
#include <nlohmann/json.hpp>

#include "core/CommandCore.h"
#include "core/JsonString.h"
#include "core/Record.h"
#include "fuzz/Fuzz.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

class RecordField final : public ResultParamBase {
 public:
  RecordField(ResultList* list, std::vector<std::string> texts)
      : ResultParamBase(list, "_records"), texts_(std::move(texts)) {}

  void render(ValueBinder& out) const override {
    std::vector<RecordMember> members = {{.name = "list", .items = &texts_}};
    for (const std::string& text : texts_) members.push_back({text, text});
    out.addRecord("record", members);
    out.addRecords(name(), [&members](const RecordReceiver& receiver) {
      receiver(members);
      receiver({});
      receiver(members);
    });
  }
  void typeName(std::string*) const override {}

 private:
  std::vector<std::string> texts_;
};

class ResultOfTexts final : public TunadmCommandInstance {
 public:
  explicit ResultOfTexts(const std::vector<std::string>& texts)
      : TunadmCommandInstance(texts[0]),
        text_(resultList(), texts[1]),
        records_(resultList(), texts) {
    statusField().status() = Status(kSuccess, texts[2], texts[3]);
    text_.set(texts[4]);
    list_.lines() = texts;
    (void)params()[1]->setFromText(texts[5]);  // the request's ID; any text is accepted
  }
  void execute(StatusCodeResultField&) override {}

 private:
  StringResult text_;
  StringVectorResultField list_{resultList(), "_list"};
  RecordField records_;
};

}  // namespace

void checkInput(const std::string& text) {
  std::vector<std::string> texts = fgetsLines(text, text.size() + 2);
  texts.resize(std::max<std::size_t>(texts.size(), 6));
  std::string json;
  ResultOfTexts(texts).renderJson([&json](std::string_view piece) { json += piece; });
  require(json.ends_with('\n') && json.find('\n') == json.size() - 1, "the result is one line");
  json.pop_back();
  require(nlohmann::json::accept(json), "a strict reader accepts the result");

  std::string once;
  appendJsonString(text, &once);
  require(nlohmann::json::accept(once), "a strict reader accepts the string");
}

}  // namespace tunadm
