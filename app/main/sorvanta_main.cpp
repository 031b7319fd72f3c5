#include "app/sorvanta_app.h"

quilt::Application* CreateApplication() {
    return new SorvantaApp;
}
