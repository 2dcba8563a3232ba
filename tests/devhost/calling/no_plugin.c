/* A library that is no plugin: it has no entry for a host. */
int libraryWithoutAnEntry(void);
int libraryWithoutAnEntry(void) { return 0; }
