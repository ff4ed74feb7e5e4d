// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/anytext.h"

#include <QString>
#include <QVector>

namespace
{

using Characters = std::vector<uint32_t>;

rc::Gen<uint32_t> within(uint32_t first, uint32_t last)
{
    return rc::gen::inRange(first, last + 1);
}

rc::Gen<uint32_t> any_latin1()
{
    return rc::gen::weightedOneOf<uint32_t>({{8, within(0x20, 0x7e)},
                                             {1, rc::gen::just<uint32_t>('@')},
                                             {1, within(0x01, 0x09)},
                                             {2, within(0x80, 0xff)}});
}

// Without the surrogates, which are no characters.
rc::Gen<uint32_t> any_character()
{
    return rc::gen::weightedOneOf<uint32_t>({{6, any_latin1()},
                                             {2, within(0x100, 0x7ff)},
                                             {1, within(0x800, 0xd7ff)},
                                             {1, within(0xe000, 0xfffd)},
                                             {1, within(0x10000, 0x10fffd)}});
}

std::string utf8_of(const Characters &characters)
{
    return QString::fromUcs4(characters.data(), static_cast<int>(characters.size())).toStdString();
}

} // namespace

rc::Gen<std::string> any_line(std::size_t max_bytes)
{
    return rc::gen::map(rc::gen::container<Characters>(any_character()),
                        [max_bytes](Characters characters) {
                            std::string text = utf8_of(characters);
                            while (text.size() > max_bytes) {
                                characters.pop_back();
                                text = utf8_of(characters);
                            }
                            return text;
                        });
}

rc::Gen<std::string> any_latin1_line(std::size_t max_characters)
{
    return rc::gen::map(rc::gen::container<Characters>(any_latin1()),
                        [max_characters](Characters characters) {
                            if (characters.size() > max_characters)
                                characters.resize(max_characters);
                            return utf8_of(characters);
                        });
}

rc::Gen<std::vector<std::string>> any_list(int from, int to, const rc::Gen<std::string> &text)
{
    return rc::gen::mapcat(rc::gen::inRange(from, to + 1), [text](int count) {
        return rc::gen::container<std::vector<std::string>>(static_cast<std::size_t>(count), text);
    });
}
