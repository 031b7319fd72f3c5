#include "quilt/application.h"

int main(int argc, char** argv) {
    return quilt::RunProcess(CreateApplication, argc, argv);
}
