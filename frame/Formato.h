// The format function of the host for the masks the system uses, in the company's Italian
// locale: the comma is the decimal mark and the point groups thousands, whatever the locale of
// the process.
//
// Numeric masks: '#' an optional digit, '0' a required digit, ',' anywhere in the integer part
// turns on thousands grouping, '.' the decimal position; after it '0' is a decimal always shown
// and '#' one shown only when not zero. Text in double quotes or after a backslash is copied,
// other characters before the first or after the last placeholder are copied as they stand.
// Integer digits beyond the mask's placeholders are all printed ("00" formats 123 as "123").
// Halves round away from zero on the decimal value: amounts and integers exactly, doubles
// after reading them to fifteen significant digits (2.345 gives "2,35" with "0.00"). A value
// that rounds to zero is printed without a minus sign.
//
// Date masks ("dd/mm/yyyy", "dd/mm/yy", "yyyymmdd"): the tokens of Data::Formato.
#pragma once
#include <string>
#include <string_view>

#include "frame/Valore.h"

namespace vorn {

// Formats a value by a mask. Numbers, amounts, booleans (-1/0), dates (their serial count) and
// numeric text take a numeric mask; text that is not a number comes back as it stands; Null
// gives empty text and Empty counts as 0. A mask without '#' and '0' that holds d, m or y
// tokens is a date mask (see FormatoData). An empty mask gives the value's own text.
std::string Format(const Valore& v, std::string_view maschera);

// A date mask applied to a date, to text that reads as a date, or to a number taken as the
// serial count of days; other text comes back as it stands, Null and Empty give empty text.
std::string FormatoData(const Valore& v, std::string_view maschera);

// True when the mask is a date mask.
bool MascheraData(std::string_view maschera);

}  // namespace vorn
