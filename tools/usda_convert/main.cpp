#include "usda_convert.h"

#include <QCoreApplication>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    return qm::usda::runConverter(app.arguments().mid(1));
}
