#include "tav_operation_import.h"

#include "common/guard.h"
#include "common/regional.h"
#include "forms/forms.h"
#include "host/open_class.h"

namespace {

// A host's null pointer is an empty text.
tav::Text TextOf(const char* text) {
    return text == nullptr ? tav::Text() : tav::FromUtf8(text);
}

tav::Date DateOf(const char* text) {
    if (text == nullptr) return tav::OpenClass::kNoDateLimit;
    const auto date = tav::ParseDate(TextOf(text));
    if (!date) throw tav::Failure(tav::RunTimeError::TypeMismatch, TextOf(text));
    return *date;
}

tav::OpenClass component;

}  // namespace

void tav_start(const char* inn, const char* kpp, const char* vdm) {
    tav::Guarded(u"Ошибка в функции Start", [&] { component.start(TextOf(inn), TextOf(kpp), DateOf(vdm)); });
}

void tav_view_v_id(int16_t id) {
    component.view_v_id(id);
}

void tav_import(const char* inn, const char* kpp) {
    component.import(TextOf(inn), TextOf(kpp));
}

void tav_view_v(const char* inn, const char* kpp) {
    component.view_v(TextOf(inn), TextOf(kpp));
}

void tav_view_a(const char* inn, const char* kpp) {
    component.view_a(TextOf(inn), TextOf(kpp));
}

void tav_process_events(void) {
    if (tav::ToolkitLoaded()) tav::CurrentToolkit().ProcessEvents();
}

void tav_run_until_closed(void) {
    if (tav::ToolkitLoaded()) tav::CurrentToolkit().RunUntilClosed();
}
