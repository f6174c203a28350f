<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>epr::Cleanup</name>
    <message numerus="yes">
        <source>Removed %n unfinished file(s) that an interrupted clean-up had left in %1.</source>
        <translation>
            <numerusform>Removed %n unfinished file that an interrupted clean-up had left in %1.</numerusform>
            <numerusform>Removed %n unfinished files that an interrupted clean-up had left in %1.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::CleanupCommand</name>
    <message numerus="yes">
        <source>The clean-up was stopped: %n file(s) were not touched.</source>
        <translation>
            <numerusform>The clean-up was stopped: %n file was not touched.</numerusform>
            <numerusform>The clean-up was stopped: %n files were not touched.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::MainWindow</name>
    <message numerus="yes">
        <source>incomplete: %n folder(s) could not be read</source>
        <translation>
            <numerusform>incomplete: %n folder could not be read</numerusform>
            <numerusform>incomplete: %n folders could not be read</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::ProgressEstimate</name>
    <message numerus="yes">
        <source>about %n minute(s) left</source>
        <translation>
            <numerusform>about %n minute left</numerusform>
            <numerusform>about %n minutes left</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::RemovalDialog</name>
    <message numerus="yes">
        <source>%n of them are hidden by the filter at the moment.</source>
        <translation>
            <numerusform>%n of them is hidden by the filter at the moment.</numerusform>
            <numerusform>%n of them are hidden by the filter at the moment.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::ScanController</name>
    <message numerus="yes">
        <source>%n file(s) are text and not audio. They are still checked by hash.</source>
        <translation>
            <numerusform>%n file is text and not audio. It is still checked by hash.</numerusform>
            <numerusform>%n files are text and not audio. They are still checked by hash.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Could not read %n more folder(s).</source>
        <translation>
            <numerusform>Could not read %n more folder.</numerusform>
            <numerusform>Could not read %n more folders.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Left out %n file(s) or folder(s) whose names are not valid UTF-8.</source>
        <translation>
            <numerusform>Left out %n file or folder whose name is not valid UTF-8.</numerusform>
            <numerusform>Left out %n files or folders whose names are not valid UTF-8.</numerusform>
        </translation>
    </message>
</context>
</TS>
