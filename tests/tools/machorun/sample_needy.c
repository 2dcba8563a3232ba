// Imports a function that nothing provides.
extern int function_of_nobody(void);
__attribute__((visibility("default"))) int callNobody(void) { return function_of_nobody(); }
