#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// What a C program got from the library.
typedef struct {
  long long best;    /* value of the solved model, or -1 */
  int nbFailures;    /* that have arrived */
  int nbNullTexts;   /* that have arrived */
  char function[64]; /* of the last failure */
  char text[256];    /* the last text that arrived */
} PlainResult;

/// Builds and solves a model, then makes three mistakes: closes a closed model, names an expression by null, and asks
/// for a phase that does not exist.
PlainResult runPlainClient(void);

#ifdef __cplusplus
}
#endif
