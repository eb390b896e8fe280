/* A host in C: imports what the settings' folder holds, writes the summary of the statements, and serves its
 * windows until the user has closed them.
 *
 *     cc host.c $(pkg-config --cflags --libs TAV_OperationImport) -o host
 *     ./host 7701234567 770101001            the main window
 *     ./host 7701234567 770101001 import     without a window
 */
#include <stdio.h>
#include <string.h>

#include <tav_operation_import.h>

int main(int argc, char **argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: %s INN KPP [import|statements|acts]\n", argv[0]);
        return 2;
    }
    const char *what = argc > 3 ? argv[3] : "start";
    if (strcmp(what, "import") == 0) {
        tav_import(argv[1], argv[2]);
    } else if (strcmp(what, "statements") == 0) {
        tav_view_v(argv[1], argv[2]);
    } else if (strcmp(what, "acts") == 0) {
        tav_view_a(argv[1], argv[2]);
    } else {
        tav_start(argv[1], argv[2], NULL);
    }
    tav_run_until_closed();
    return 0;
}
