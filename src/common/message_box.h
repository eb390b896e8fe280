// How the system speaks to a person: message boxes. A
// window shows them, or standard error, or a list in tests.
#pragma once

#include <vector>

#include "common/text.h"

namespace tav {

enum class MessageIcon { Critical, Information };

struct Message {
    Text title;
    Text text;
    MessageIcon icon = MessageIcon::Critical;

    bool operator==(const Message&) const = default;
};

class MessageBox {
 public:
    virtual ~MessageBox() = default;
    virtual void Show(const Message& message) = 0;
};

// The box in use: the one of the thread's innermost living ScopedMessageBox, else the default.
MessageBox& CurrentMessageBox();

// Where messages go by default: "title: text" on standard error, until there are windows that show them.
MessageBox& DefaultMessageBox();
void SetDefaultMessageBox(MessageBox& box);

class ScopedMessageBox {
 public:
    explicit ScopedMessageBox(MessageBox& box);
    ~ScopedMessageBox();
    ScopedMessageBox(const ScopedMessageBox&) = delete;
    ScopedMessageBox& operator=(const ScopedMessageBox&) = delete;

 private:
    MessageBox* outer_;
};

// While one lives, a text is shown once, whatever its title: several procedures may say what one cause has done to them.
// One inside another has a memory of its own.
class OneBoxPerCause : public MessageBox {
 public:
    OneBoxPerCause();
    void Show(const Message& message) override;

 private:
    MessageBox& shows_;
    std::vector<Text> shown_;
    const ScopedMessageBox scope_;
};

// Shows a message of the current box.
void ShowMessage(TextView title, TextView text, MessageIcon icon = MessageIcon::Critical);

}  // namespace tav
