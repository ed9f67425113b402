#include "time/TimeZone.h"

namespace nv {

TimeZones fixedZoneNames() {
    // Reports of earlier cases quote these names: their misspellings stay.
    static constexpr struct {
        std::int16_t bias;
        const char *name;
    } kRows[] = {
        {0, "(GMT) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London"},
        {60, "(GMT+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna"},
        {120, "(GMT+02:00) Amman, Athens, Bucharest, Istanbul, Beirut"},
        {180, "(GMT+03:00) Baghdad, Kuwait, Moscow, Nairobi, St. Petersberg"},
        {210, "(GMT+03:30) Tehran"},
        {240, "(GMT+04:00) Abu Dhabi, Muscat, Baku, Caucasa Standard Time"},
        {270, "(GMT+04:30) Kabul"},
        {300, "(GMT+05:00) Ekaterinburg, Islamabad, Karachi, Tashkent"},
        {330, "(GMT+05:30) Calcutta, Chennai, Mumbai, New Delhi"},
        {345, "(GMT+05:45) Kathmandu"},
        {360, "(GMT+06:00) Almaty, Novosibirsk, Astana, Dhaka"},
        {390, "(GMT+06:30) Yangon (Rangoon)"},
        {420, "(GMT+07:00) Bangkok, Hanoi, Jakarta, Krasnoyarsk"},
        {480, "(GMT+08:00) Beijing, Hong Kong, Urumqi, Kuala Lumpur, Singapore"},
        {540, "(GMT+09:00) Osaka, Sapporo, Tokyo, Seoul, Yakutsk"},
        {570, "(GMT+09:30) Adelaide, Darwin"},
        {600, "(GTM+10:00) Brisbane, Canberra, Melbourne, Sydney, Guam"},
        {660, "(GTM+11:00) Magadan, Solmon Is., New Caledonia"},
        {720, "(GTM+12:00) Auckland, Wellington, Fiji, Kamchatka, marshall Is."},
        {780, "(GTM+13:00) Nuku'alofa"},
        {-60, "(GMT-01:00) Azores, Cape Verde Is."},
        {-120, "(GMT-02:00) Mid-Atlantic"},
        {-180, "(GMT-03:00) Brasilia, Buenos Aires, Georgetown, Greenland"},
        {-210, "(GMT-03:30) Newfoundland"},
        {-240, "(GMT-04:00) Atlantic Time (Canada), La Paz, Manaus, Santiago"},
        {-270, "(GMT-04:30) Caracas"},
        {-300, "(GMT-05:00) Bogota, Eastern Time (US & Canada), Indiana (East)"},
        {-360, "(GMT-06:00) Central America, Central Time (US & Canada), Mexico City"},
        {-420, "(GMT-07:00) Arizona, Chihuahua, La Paz, Mountain Time (US & Canada)"},
        {-480, "(GMT-08:00) Pacific Time (US & Canada), Tijuana, Baja California"},
        {-540, "(GMT-09:00) Alaska"},
        {-600, "(GMT-10:00) Hawaii"},
        {-660, "(GMT-11:00) Midway Island, Samoa"},
        {-720, "(GMT-12:00) International Date Line West"},
    };
    TimeZones names;
    for (const auto &row : kRows)
        names.add({row.bias, row.name});
    return names;
}

} // namespace nv
