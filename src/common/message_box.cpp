#include "common/message_box.h"

#include <algorithm>
#include <cstdio>

namespace tav {
namespace {

class StandardErrorBox : public MessageBox {
 public:
    void Show(const Message& message) override {
        TextView text = message.text;
        while (text.ends_with(u'\n') || text.ends_with(u'\r')) text.remove_suffix(1);
        std::fprintf(stderr, "%s: %s\n", ToUtf8(message.title).c_str(), ToUtf8(text).c_str());
    }
};

MessageBox*& Default() {
    static StandardErrorBox standard_error;
    static MessageBox* box = &standard_error;
    return box;
}

thread_local MessageBox* scoped_box = nullptr;

}  // namespace

MessageBox& CurrentMessageBox() {
    return scoped_box == nullptr ? DefaultMessageBox() : *scoped_box;
}

MessageBox& DefaultMessageBox() {
    return *Default();
}
void SetDefaultMessageBox(MessageBox& box) {
    Default() = &box;
}

ScopedMessageBox::ScopedMessageBox(MessageBox& box) : outer_(scoped_box) {
    scoped_box = &box;
}
ScopedMessageBox::~ScopedMessageBox() {
    scoped_box = outer_;
}

OneBoxPerCause::OneBoxPerCause()
    : shows_([]() -> MessageBox& {
          const auto* outer = dynamic_cast<OneBoxPerCause*>(&CurrentMessageBox());
          return outer == nullptr ? CurrentMessageBox() : outer->shows_;
      }()),
      scope_(*this) {}

void OneBoxPerCause::Show(const Message& message) {
    if (std::ranges::find(shown_, message.text) != shown_.end()) return;
    shown_.push_back(message.text);
    shows_.Show(message);
}

void ShowMessage(TextView title, TextView text, MessageIcon icon) {
    CurrentMessageBox().Show({Text(title), Text(text), icon});
}

}  // namespace tav
