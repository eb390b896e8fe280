/*
 * TAV_OperationImport for hosts in C: the operations of the class OpenClass.
 *
 * Texts are UTF-8. Nothing is returned and nothing is thrown: what fails is shown to the user, in a message
 * box where there is a screen, else on standard error. The settings say where documents, reports and the
 * database are (see the README).
 *
 * Everything is called from one thread, the one of the host's user interface. Windows stay open when an
 * operation has returned. A host that runs a Qt 6 event loop serves them without knowing; any other host
 * calls tav_process_events now and then, or tav_run_until_closed.
 */
#ifndef TAV_OPERATION_IMPORT_H
#define TAV_OPERATION_IMPORT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Makes it the current taxpayer and shows the main window. `vdm` is the host's working date, "dd.mm.yyyy";
 * NULL means no limit. Text that is no date is shown as a failure. */
void tav_start(const char* inn, const char* kpp, const char* vdm);

/* Builds the report of one statement, by its number in the database, and opens it. */
void tav_view_v_id(int16_t id);

/* A complete unattended import from the import folder of the settings. */
void tav_import(const char* inn, const char* kpp);

/* Sum up the statements, or the acts, of the taxpayer, and show the dialog that narrows the summary. */
void tav_view_v(const char* inn, const char* kpp);
void tav_view_a(const char* inn, const char* kpp);

/* Handles what waits for the windows: input, timers, drawing. Returns at once. */
void tav_process_events(void);

/* Returns when the user has closed the last window; at once when there is none. */
void tav_run_until_closed(void);

#ifdef __cplusplus
}
#endif

#endif
