#include "conformance/Conformance.h"

int main(int argc, char** argv) {
    return kvSubstance::conformance::run(argc, argv);
}
