/* The command line of a utility: one table of options and arguments, checked
 * whole before the first option is seen.
 *
 * Law: an init function reads the whole command line once. It answers --help
 * and --version itself, takes the standard options out, and finds every mistake
 * of the user; when it does not return sOKAY the program exits, for the user
 * has been told. Then the program asks for its options one by one, in the order
 * of the command line. Nothing is copied: the argument vector and the table
 * must outlive the record, and every text handed out points into the vector.
 * For the main thread of a program.
 *
 *     static const OAK_CMDLINE_OPT_A options[] = {
 *         {"o", "output", "s=file", "Write to this file"},
 *         {"v", "verbose", NULL, "Say more"},
 *         {"f", NULL, "#=input", "The file to read"},
 *         {NULL, NULL, NULL, NULL}};
 *     OAK_CMDLINE_A cmd;
 *     const char *arg;
 *     char option;
 *     OAK_RETCODE rc = oak_cmdlineInit(&cmd, argc, argv, "Reads a file.", options);
 *     if (rc != sOKAY) {
 *         return rc == eBASE_COMMAND ? 1 : 0;
 *     }
 *     while ((option = oak_cmdlineNextShortOption(&cmd, &arg)) != 0) ...
 *
 * On the command line, flags can be grouped (-ab); the value of a short option
 * is always the next entry (-o out); a long option takes its value from the
 * next entry or behind '=' (--output=out). Every entry that does not begin with
 * '-' is a positional argument. */
#ifndef OAKCMDLINEAPI_H
#define OAKCMDLINEAPI_H

#include "osltypes.h"

OAK_C_BEGIN

/* One row of a program's table; a row whose optShort is null ends it. */
typedef struct OAK_CMDLINE_OPT_A {
    const char *optShort; /* its first character counts; "" for a long-only option */
    const char *optLong;  /* without dashes, or null */
    const char *arg;      /* null for a flag; else a kind, a separator that is skipped, and the
                             name that the help shows: "s=file"
                               'i'  an integer: an optional '-', then digits
                               's'  any text
                               'c'  exactly one character
                               '#'  a positional argument that must appear, once
                               '?'  a positional argument that may appear, once
                               '*'  a positional argument, any number of times */
    const char *desc;     /* text for the help; null hides the row there */
} OAK_CMDLINE_OPT_A;

/* Which standard options a program does not have. */
typedef struct OAK_CMD_DEFAULTS {
    uint8_t no_encryption; /* no --key */
    uint8_t no_docroot;    /* no --docroot */
} OAK_CMD_DEFAULTS;

/* What the standard options delivered. */
typedef struct OAK_CMDLINE_STATUS_A {
    OAK_BOOL_T quiet;    /* -q, --quiet */
    const char *enc_key; /* --key, or null */
    const char *docroot; /* --docroot, or null */
} OAK_CMDLINE_STATUS_A;

/* The reader of a command line: a plain record of the caller. */
typedef struct OAK_CMDLINE_A {
    uint32_t ii;                      /* index in argv of the entry that is being read */
    uint32_t ii_next;                 /* index of the next one */
    uint32_t kk;                      /* position in a group of short options; 0 for none */
    uint32_t argument_ind_next;       /* row from which positional arguments are sought */
    const OAK_CMDLINE_OPT_A *opts;    /* the table */
    int32_t argc;                     /* entries of argv, the program's name included */
    const char *const *argv;          /* the arguments */
    const char *banner;               /* printed first, or null */
    const char *description;          /* the program's summary for the help, or null */
    const OAK_CMD_DEFAULTS *defaults; /* null for no standard options but help */
} OAK_CMDLINE_A;

/* Checks a command line without banner and without standard options other than
 * -h and --help. Arguments and results as for oak_cmdlineInitEx. */
OAK_API OAK_RETCODE oak_cmdlineInit(OAK_CMDLINE_A *cmd, int32_t argc, const char *const *argv,
                                    const char *description, const OAK_CMDLINE_OPT_A *opts);

/* Checks a command line and takes the standard options out of it.
 *   cmd           filled for the next-option functions
 *   banner        printed on standard output before anything else, unless
 *                 --quiet is given; null for none
 *   argc, argv    as given to main
 *   description   one paragraph for the help; null for none
 *   opts          the program's table
 *   defaults      says which standard options there are: with it -q, --quiet
 *                 and --version, and unless excluded --key and --docroot; null
 *                 for none but help
 *   status        receives what the standard options delivered; may be null
 * sOKAY          the command line is right
 * sCMD_USAGE     the help was asked for and has been printed
 * sCMD_VERSION   the version was asked for and has been printed
 * eBASE_COMMAND  the command line is wrong; standard error says how
 * eINVNULLARG    `cmd`, `argv` or `opts` is null */
OAK_API OAK_RETCODE oak_cmdlineInitEx(OAK_CMDLINE_A *cmd, const char *banner, int32_t argc,
                                      const char *const *argv, const char *description,
                                      const OAK_CMDLINE_OPT_A *opts,
                                      const OAK_CMD_DEFAULTS *defaults,
                                      OAK_CMDLINE_STATUS_A *status);

/* Returns the first short character of the next option's or argument's row, or
 * 0 when none remains. A long-only row gives 0 as well: a program that has such
 * rows uses oak_cmdlineNextLongOption.
 *   pArg   receives the option's value or the argument, null for a flag; may be
 *          null */
OAK_API char oak_cmdlineNextShortOption(OAK_CMDLINE_A *cmd, const char **pArg);

/* Returns the long name of the next option's or argument's row, its short text
 * where it has none, or null when none remains.
 *   pArg   as above */
OAK_API const char *oak_cmdlineNextLongOption(OAK_CMDLINE_A *cmd, const char **pArg);

OAK_C_END

#endif
