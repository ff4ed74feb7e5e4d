/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * The host's operations. Whatever offers these and the record layouts beside
 * this file is the host; no caller asks which one answers. Results are small
 * integers: 65535 as a 16-bit value, that is -1, is the failure value, and
 * callers compare the low 16 bits.
 */
#ifndef HOST_OPERATIONS_H
#define HOST_OPERATIONS_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "host/memories.h"
#include "host/samplingrecord.h"
#include "host/tablerecord.h"

HOST_BEGIN

/* ---- Task and memory ---------------------------------------------------- */

enum { JOIN_REFUSED = 5000 };

/* Admits the task to the host; JOIN_REFUSED as a 16-bit value: refused. */
int32_t join_layer(int32_t layer);

/* The host's own exit for a refused task. Does not return. */
void exit_auth_failure(void) __attribute__((noreturn));

/* Address of a memory, or null when the host does not run. */
void *get_shrd_mem(int32_t id, int32_t options);

/* Fills *address; 0 on failure, otherwise non-zero. */
int32_t link_to_memory(int32_t id, void **address);

typedef struct VARIABLE_ID {
    uint8_t bytes[20];
} VARIABLE_ID;
HOST_SIZE(VARIABLE_ID, 20);

/* 0 when a variable of that name exists, otherwise an error code. */
int32_t find_variable(const char *name, VARIABLE_ID *id);

/* Address of the variable's VARIABLE_RECORD, or null. */
void *get_vrbl_adr(VARIABLE_ID id);

/* ---- Small services ----------------------------------------------------- */

/* One entry in the host's log. */
void log_error(const char *source, int32_t line, int32_t severity, int32_t code, const char *format,
               ...) __attribute__((format(printf, 5, 6)));

/* Copies at most size - 1 bytes and a terminator, never half a UTF-8 character,
 * and reads at most size bytes of text; an overflow goes to the host's log. */
void copyn(const char *source, int32_t line, char *destination, const char *text, size_t size);

/* Non-zero when the text is empty or blank. */
int32_t string_blank(const char *text);

/* Splits a path; a null buffer is skipped. Directory with its trailing slash,
 * extension with its dot. Each buffer must hold the whole path. */
void _splitpath(const char *path, char *drive, char *directory, char *name, char *extension);

/* Upper-cases in place; returns text. */
char *strupr(char *text);

enum { LINE_BUFFER = 1024, KEYWORD_NOT_FOUND = -51, LINE_END_OF_FILE = -1 };

/* The line after the keyword line, into line[LINE_BUFFER]; KEYWORD_NOT_FOUND
 * leaves file position and line alone; LINE_END_OF_FILE when nothing follows
 * the keyword line, which is then in line. Otherwise 0. */
int32_t get_1st_line(FILE *file, char *line, const char *keyword);

/* The next line, into line[LINE_BUFFER]; LINE_END_OF_FILE at the end. */
int32_t get_next_line(FILE *file, char *line);

/* ---- Table files -------------------------------------------------------- */

/* Fills the record from a table file; 65535 as a 16-bit value is failure. */
int32_t read_table(const char *path, TABLE_RECORD *table);

enum { ARCHIVE_POINTERS = 500 };

/* Number of records delivered, 0 or less when there is none. records and aux
 * are ARCHIVE_POINTERS zeroed pointers each; records[0] points to memory of the
 * host's, good until the next call. */
int16_t read_archive_file_poly(int32_t selector, const char *path, TABLE_RECORD **records,
                               void **aux);

/* Adds the record to the archive; non-zero when the table type is not valid. */
int32_t save_table_files_poly(const char *path, const TABLE_RECORD *table, int32_t save_type);

/* Writes a table file from the record; 0 on success. */
int32_t create_table(const char *path, const TABLE_RECORD *table);

/* ---- Tables and polynomials --------------------------------------------- */

/* Builds the long table: for POLY_RANGE from poly[poly_range_index], otherwise
 * from poly[0]. */
int32_t compute_long_table(const TABLE_RECORD *table, LONG_TABLE *long_table);

/* Value at x (mV) of the piecewise straight line through the long table, in
 * engineering units. *hint is a search position, 0 to begin with. */
double linear_interp(uint16_t *hint, const LONG_TABLE *long_table, int32_t zero, double x);
double linear_interp_long(uint16_t *hint, const LONG_TABLE *long_table, int32_t zero, double x);

/* Least-squares polynomial of coeff_count coefficients through obs points;
 * writes store[0..coeff_count-1], lowest power first. */
int32_t polynomialfit(int32_t obs, int32_t coeff_count, const double *x, const double *y,
                      double *store);

/* intervals + 1 samples of the polynomial over [from, to]. */
void computepoints(const double *coeffs, int32_t coeff_count, int32_t intervals, double *out_x,
                   double *out_y, double from, double to);

/* Value of the polynomial at x. */
double poly(const double *coeffs, int32_t coeff_count, double x);

/* r squared of the polynomial over the n pairs. */
double getRSquared(const double *x, const double *y, int32_t n, const double *coeffs,
                   int32_t coeff_count);

/* ---- Sampling statistics ------------------------------------------------ */

/* Appends the value; when the FIFO is full the oldest goes. */
void to_fifo(FIFO_RECORD *fifo, double value);
void clear_stat_values(STAT_RECORD *statistics);
/* Takes the FIFOs' contents as the data set, y against x. */
void xy_acquire_from_fifo(STAT_RECORD *statistics, const FIFO_RECORD *y, const FIFO_RECORD *x);
void xy_statistics_compute(STAT_RECORD *statistics);
double get_stat_member(const STAT_RECORD *statistics, int32_t member);

/* ---- Units -------------------------------------------------------------- */

/* 65535 as a 16-bit value is failure. */
int32_t units_init_access(int32_t mode);
/* 0 when the two keywords have the same dimension, otherwise something else. */
int32_t units_dimension_check_key(const char *a, const char *b);
/* Writes value converted from one keyword to another; -1, and the value passed
 * on unchanged, for unknown or unlike keywords. */
int32_t units_dbl_keyword_convrt(const char *from, double *out, const char *to, double value);
/* The same for a token such as "1[PCT]". */
int32_t units_token_convert(const char *token, const char *to, double *out);
int32_t units_keyword_to_code(const char *keyword, int32_t *code);
/* Present value of a host variable (the address that get_vrbl_adr gave),
 * converted to the keyword. */
int32_t units_get_real_keyword(double *out, const void *variable, const char *keyword);

HOST_END

#endif
