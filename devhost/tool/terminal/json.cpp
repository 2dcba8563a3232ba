#include "devhost/tool/terminal/json.h"

#include <iostream>

#include "devhost/runtime/objects.h"

namespace devhost::tool {
namespace {

struct Converter {
  Json operator()(bool truth) const { return truth; }
  Json operator()(std::int64_t number) const { return number; }
  Json operator()(std::uint64_t number) const { return number; }
  Json operator()(double number) const { return number; }  // written as null unless finite
  Json operator()(const std::string& text) const { return text; }
  Json operator()(const Values& elements) const {
    Json list = Json::array();
    for (const Value& element : elements) {
      list.push_back(jsonValue(element));
    }
    return list;
  }
  template <typename Other>
  Json operator()(const Other& /*other*/) const {
    return nullptr;
  }
};

}  // namespace

Json jsonDocument(const char* command) {
  return {{"format", "ostrevin-host"}, {"version", kJsonVersion}, {"command", command}};
}

Json jsonValue(const Value& value) { return std::visit(Converter{}, value.storage()); }

void printJson(const Json& document) {
  std::cout << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace devhost::tool
