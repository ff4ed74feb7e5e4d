// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program that has to link, and does nothing. What computation asks of the
// windows is the one call upwards; where a window room brings its own, that one
// is taken.
__attribute__((weak)) void show_information(const char *) {}
__attribute__((weak)) void show_warning(const char *, const char *) {}

int main()
{
    return 0;
}
