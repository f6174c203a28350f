#include <QTest>
int main(){return 0;}
