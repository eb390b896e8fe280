#include "common/message_box.h"

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

MessageBox*& Current() {
    static StandardErrorBox standard_error;
    static MessageBox* current = &standard_error;
    return current;
}

}  // namespace

MessageBox& CurrentMessageBox() {
    return *Current();
}

ScopedMessageBox::ScopedMessageBox(MessageBox& box) : outer_(Current()) {
    Current() = &box;
}
ScopedMessageBox::~ScopedMessageBox() {
    Current() = outer_;
}

void ShowMessage(TextView title, TextView text, MessageIcon icon) {
    CurrentMessageBox().Show({Text(title), Text(text), icon});
}

}  // namespace tav
