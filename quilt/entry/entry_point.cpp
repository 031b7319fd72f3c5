#include "quilt/application.h"
#include "quilt/imp_factory.h"

int main(int argc, char** argv) {
    quilt::InstallGtkBackend();
    return quilt::RunProcess(CreateApplication, argc, argv);
}
