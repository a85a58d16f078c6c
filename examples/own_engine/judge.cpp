// Judges the own engine and linker by what the library relies on:
//
//   judge_own_engine stripes.xml varnish.xml
#include "conformance/Conformance.h"

int main(int argc, char** argv) {
    return kvSubstance::conformance::run(argc, argv);
}
