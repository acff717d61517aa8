#include "foundation/message_string.h"

#include "foundation/format.h"
#include "foundation/leaf_mutex.h"

namespace {

using Guard = cc_RankedMutex<std::recursive_mutex, cc_LockRank::dictionaries>;

struct cs_Dictionaries {
  Guard guard;
  std::vector<ccDllDictionary*> all;
};

// Never destroyed: static dictionaries come and go in any order.
cs_Dictionaries& cf_dictionaries()
{
  static cs_Dictionaries& dictionaries = *new cs_Dictionaries;
  return dictionaries;
}

using Hold = std::lock_guard<Guard>;

}  // namespace

ccDllDictionary::ccDllDictionary(char const* module) : module_(module ? module : "")
{
  Hold const hold(cf_dictionaries().guard);
  cf_dictionaries().all.push_back(this);
}

ccDllDictionary::~ccDllDictionary()
{
  Hold const hold(cf_dictionaries().guard);
  std::erase(cf_dictionaries().all, this);
}

ccDllDictionary* ccDllDictionary::find(std::string const& module)
{
  Hold const hold(cf_dictionaries().guard);
  for (ccDllDictionary* const dictionary : cf_dictionaries().all)
    if (dictionary->module_ == module)
      return dictionary;
  return nullptr;
}

void ccDllDictionary::set(long id, std::string text)
{
  Hold const hold(cf_dictionaries().guard);
  texts_[id] = std::move(text);
}

bool ccDllDictionary::lookup(long id, std::string& text) const
{
  Hold const hold(cf_dictionaries().guard);
  auto const found = texts_.find(id);
  if (found == texts_.end())
    return false;
  text = found->second;
  return true;
}

cc_MsgArgs& cc_MsgArgs::add(std::string const& text)
{
  texts_.push_back(text);
  return *this;
}

cc_MsgArgs& cc_MsgArgs::add(long v) { return add(std::to_string(v)); }
cc_MsgArgs& cc_MsgArgs::add(int v) { return add(std::to_string(v)); }
cc_MsgArgs& cc_MsgArgs::add(double v, char const* format) { return add(cfFormat(format, v)); }

ccStringLiteral::ccStringLiteral(long id, char const* text, char const* module)
    : id_(id), text_(text ? text : ""), module_(module ? module : "")
{
}

bool ccStringLiteral::entry_(std::string& text) const
{
  Hold const hold(cf_dictionaries().guard);  // so that the dictionary stays between the two steps
  ccDllDictionary const* const dictionary = ccDllDictionary::find(module_);
  return dictionary && dictionary->lookup(id_, text);
}

std::string ccStringLiteral::text() const
{
  std::string entry;
  return entry_(entry) && cf_formatTypes(entry) == cf_formatTypes(text_) ? entry : text_;
}

std::string ccStringLiteral::formatString(cc_MsgArgs const& args) const
{
  std::string text = text_;
  entry_(text);
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const next = text[i] == '%' && i + 1 < text.size() ? text[i + 1] : '\0';
    auto const index = static_cast<std::size_t>(next - '1');
    if (next == '%') {
      out += '%';
      ++i;
    } else if (next >= '1' && next <= '9' && index < args.texts().size()) {
      out += args.texts()[index];
      ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}
