// Prints the question that a scan of all accounts and years asks the index: the floor of the refresh asks
// just that, of the same shell.
#include <cstdio>

#include "mailstore/index/candidate_query.h"

int main() {
    std::fputs(corvane::mailstore::candidateQuery({}, true).c_str(), stdout);
}
