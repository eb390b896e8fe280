#include "forms/qt/russian.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "forms/qt/qt_text.h"

namespace tav {
namespace {

// By the text alone: it means the same wherever Qt uses it.
constexpr std::pair<std::string_view, TextView> kTexts[] = {
    {"&Undo", u"&Отменить"},
    {"&Redo", u"&Повторить"},
    {"Cu&t", u"&Вырезать"},
    {"&Copy", u"&Копировать"},
    {"&Paste", u"Вст&авить"},
    {"Delete", u"Удалить"},
    {"Select All", u"Выделить все"},
    {"OK", u"OK"},
    {"Cancel", u"Отмена"},
    {"&Yes", u"&Да"},
    {"&No", u"&Нет"},
    {"Back", u"Назад"},
    {"Go back", u"Назад"},
    {"Forward", u"Вперед"},
    {"Go forward", u"Вперед"},
    {"Parent Directory", u"На уровень выше"},
    {"Go to the parent directory", u"На уровень выше"},
    {"Create New Folder", u"Создать папку"},
    {"Create a New Folder", u"Создать папку"},
    {"New Folder", u"Новая папка"},
    {"&New Folder", u"&Новая папка"},
    {"&Rename", u"&Переименовать"},
    {"&Delete", u"&Удалить"},
    {"Show &hidden files", u"Показывать &скрытые"},
    {"List View", u"Список"},
    {"Change to list view mode", u"Список"},
    {"Detail View", u"Таблица"},
    {"Change to detail view mode", u"Таблица"},
    {"Sidebar", u"Боковая панель"},
    {"List of places and bookmarks", u"Места и закладки"},
    {"Files", u"Файлы"},
    {"Directories", u"Папки"},
    {"Computer", u"Компьютер"},
    {"Drive", u"Диск"},
    {"Folder", u"Папка"},
    {"Name", u"Имя"},
    {"Size", u"Размер"},
    {"Type", u"Тип"},
    {"Date Modified", u"Изменен"},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     u"%1\nТакой папки нет.\nПроверьте ее имя."},
    {"Are you sure you want to delete '%1'?", u"Удалить «%1»?"},
    {"Could not delete directory.", u"Папку удалить не удалось."},
};

}  // namespace

QString RussianQt::translate(const char*, const char* source, const char*, int) const {
    const auto* text = std::find_if(std::begin(kTexts), std::end(kTexts),
                                    [&](const auto& pair) { return pair.first == source; });
    return text != std::end(kTexts) ? ToQt(text->second) : QString();
}

}  // namespace tav
