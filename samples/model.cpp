#include "samples/model.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tav::samples {

int DayNumber(const CivilDate& date) {
    const auto day = DateFromCivil(date);
    if (!day) throw std::invalid_argument("no such day");
    return static_cast<int>(day->serial);
}

CivilDate DayOf(int day_number) {
    return CivilFromDate(Date{static_cast<double>(day_number)});
}

void CheckPeriod(const Period& period) {
    if (DayNumber(period.end) < DayNumber(period.begin))
        throw std::invalid_argument("the period ends before it begins");
}

void CheckCount(int count, const char* what) {
    if (count < 0) throw std::invalid_argument(std::string("negative number of ") + what);
}

const Taxpayer& SampleTaxpayer() {
    static const Taxpayer taxpayer{u"7701234567", u"770101001", u"ООО \"Берёзовая роща\""};
    return taxpayer;
}

const Taxpayer& DivisionTaxpayer() {
    static const Taxpayer taxpayer{u"7701234567", u"770245001", u"ООО \"Берёзовая роща\", отделение № 2"};
    return taxpayer;
}

const Taxpayer& OtherTaxpayer() {
    static const Taxpayer taxpayer{u"7807654321", u"780701001", u"АО «Тихий берег»"};
    return taxpayer;
}

const Taxpayer& SoleTrader() {
    static const Taxpayer taxpayer{u"770123456789", u"000000000", u"ИП Осинин Пётр Ильич"};
    return taxpayer;
}

const std::vector<Tax>& Taxes() {
    static const std::vector<Tax> taxes{
        {u"18210101011011000110", u"Налог на прибыль организаций, зачисляемый в федеральный бюджет",
         u"Федеральный бюджет"},
        {u"18210101012021000110", u"Налог на прибыль организаций, зачисляемый в бюджеты субъектов РФ",
         u"Бюджет субъекта РФ"},
        {u"18210301000011000110", u"Налог на добавленную стоимость", u"Федеральный бюджет"},
        {u"18210602010021000110", u"Налог на имущество организаций", u"Бюджет субъекта РФ"},
        {u"18210604011021000110", u"Транспортный налог с организаций", u"Бюджет субъекта РФ"},
        {u"18210606013041000110", u"Земельный налог", u"Местный бюджет"},
        {u"18210102010011000110", u"Налог на доходы физических лиц", u"Бюджет субъекта РФ"},
    };
    return taxes;
}

const Tax& TaxOfPart(const Tax& first, int part) {
    if (part == 0) return first;
    const auto& taxes = Taxes();
    const auto at =
        std::find_if(taxes.begin(), taxes.end(), [&](const Tax& tax) { return tax.kbk == first.kbk; });
    return taxes[static_cast<std::size_t>(at - taxes.begin() + part) % taxes.size()];
}

}  // namespace tav::samples
