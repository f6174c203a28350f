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
        <source>%Ln file(s) were unticked in the meantime and stay.</source>
        <translation>
            <numerusform>%Ln file was unticked in the meantime and stays.</numerusform>
            <numerusform>%Ln files were unticked in the meantime and stay.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The clean-up was stopped: %Ln file(s) were not touched.</source>
        <translation>
            <numerusform>The clean-up was stopped: %Ln file was not touched.</numerusform>
            <numerusform>The clean-up was stopped: %Ln files were not touched.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln folder(s) that files of this clean-up came from are not there, the first of them %1.

If they are on a drive that is not connected, connect it and undo again. Undoing now would make them anew.</source>
        <translation>
            <numerusform>%Ln folder that files of this clean-up came from is not there: %1.

If it is on a drive that is not connected, connect it and undo again. Undoing now would make it anew.</numerusform>
            <numerusform>%Ln folders that files of this clean-up came from are not there, the first of them %1.

If they are on a drive that is not connected, connect it and undo again. Undoing now would make them anew.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::DifferenceMaker</name>
    <message numerus="yes">
        <source>The difference of files of more than %n minute(s) is not made.</source>
        <translation>
            <numerusform>The difference of files of more than %n minute is not made.</numerusform>
            <numerusform>The difference of files of more than %n minutes is not made.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::FilterDesk</name>
    <message numerus="yes">
        <source>%Ln copy(s) are hidden.</source>
        <translation>
            <numerusform>%Ln copy is hidden.</numerusform>
            <numerusform>%Ln copies are hidden.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Only the %Ln Group(s) Shown (%1 Copies)</source>
        <translation>
            <numerusform>Only the Group Shown (%1 Copies)</numerusform>
            <numerusform>Only the %Ln Groups Shown (%1 Copies)</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln ticked copy(s) are hidden.</source>
        <translation>
            <numerusform>%Ln ticked copy is hidden.</numerusform>
            <numerusform>%Ln ticked copies are hidden.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::FolderPanel</name>
    <message numerus="yes">
        <source>%Ln folder(s)</source>
        <translation>
            <numerusform>%Ln folder</numerusform>
            <numerusform>%Ln folders</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::GroupCheck</name>
    <message numerus="yes">
        <source>%Ln decoding error(s)</source>
        <translation>
            <numerusform>%Ln decoding error</numerusform>
            <numerusform>%Ln decoding errors</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln copy(s) differ</source>
        <translation>
            <numerusform>%Ln copy differs</numerusform>
            <numerusform>%Ln copies differ</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln copy(s) could not be checked</source>
        <translation>
            <numerusform>%Ln copy could not be checked</numerusform>
            <numerusform>%Ln copies could not be checked</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln clipped sample(s), the kept copy %1</source>
        <translation>
            <numerusform>%Ln clipped sample, the kept copy %1</numerusform>
            <numerusform>%Ln clipped samples, the kept copy %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln decoding error(s), the kept copy %1</source>
        <translation>
            <numerusform>%Ln decoding error, the kept copy %1</numerusform>
            <numerusform>%Ln decoding errors, the kept copy %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>the kept copy has %Ln decoding error(s), %1 none</source>
        <translation>
            <numerusform>the kept copy has %Ln decoding error, %1 none</numerusform>
            <numerusform>the kept copy has %Ln decoding errors, %1 none</numerusform>
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
    <name>epr::ProblemDesk</name>
    <message numerus="yes">
        <source>%Ln group(s) to look at</source>
        <translation>
            <numerusform>%Ln group to look at</numerusform>
            <numerusform>%Ln groups to look at</numerusform>
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
        <source>%Ln of them were not compared with the kept copy over their whole length.</source>
        <translation>
            <numerusform>%Ln of them was not compared with the kept copy over its whole length.</numerusform>
            <numerusform>%Ln of them were not compared with the kept copy over their whole length.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln of them are hidden by the filter at the moment.</source>
        <translation>
            <numerusform>%Ln of them is hidden by the filter at the moment.</numerusform>
            <numerusform>%Ln of them are hidden by the filter at the moment.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::ResultsPanel</name>
    <message numerus="yes">
        <source>%Ln file(s) were put back since; the next scan shows them.</source>
        <translation>
            <numerusform>%Ln file was put back since; the next scan shows it.</numerusform>
            <numerusform>%Ln files were put back since; the next scan shows them.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln file(s) were put back since the scan. Press Start Scan to see them.</source>
        <translation>
            <numerusform>%Ln file was put back since the scan. Press Start Scan to see it.</numerusform>
            <numerusform>%Ln files were put back since the scan. Press Start Scan to see them.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::Review</name>
    <message numerus="yes">
        <source>%Ln group(s) set aside as not duplicates.</source>
        <translation>
            <numerusform>%Ln group set aside as not duplicates.</numerusform>
            <numerusform>%Ln groups set aside as not duplicates.</numerusform>
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
        <source>%n file(s) are mostly silence in the analysed part. They are still checked by hash.</source>
        <translation>
            <numerusform>%n file is mostly silence in the analysed part. It is still checked by hash.</numerusform>
            <numerusform>%n files are mostly silence in the analysed part. They are still checked by hash.</numerusform>
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
    <message numerus="yes">
        <source>Left out %n file(s) whose names Windows takes for devices.</source>
        <translation>
            <numerusform>Left out %n file whose name Windows takes for a device.</numerusform>
            <numerusform>Left out %n files whose names Windows takes for devices.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) are shorter than the analysed length and were fingerprinted as far as they go.</source>
        <translation>
            <numerusform>%n file is shorter than the analysed length and was fingerprinted as far as it goes.</numerusform>
            <numerusform>%n files are shorter than the analysed length and were fingerprinted as far as they go.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Could not decode %n more file(s).</source>
        <translation>
            <numerusform>Could not decode %n more file.</numerusform>
            <numerusform>Could not decode %n more files.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::SetAsideCommand</name>
    <message numerus="yes">
        <source>%Ln group(s) restored; those of the results are back in the list.</source>
        <translation>
            <numerusform>%Ln group restored; if the results have it, it is back in the list.</numerusform>
            <numerusform>%Ln groups restored; those of the results are back in the list.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::WholeCheckCommand</name>
    <message numerus="yes">
        <source>%Ln group(s) alike to the end</source>
        <translation>
            <numerusform>%Ln group alike to the end</numerusform>
            <numerusform>%Ln groups alike to the end</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln copy(s) unticked</source>
        <translation>
            <numerusform>%Ln copy unticked</numerusform>
            <numerusform>%Ln copies unticked</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln group(s) were compared over their first %1.</source>
        <translation>
            <numerusform>%Ln group was compared over its first %1.</numerusform>
            <numerusform>%Ln groups were compared over their first %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln group(s) were found by their tags alone.</source>
        <translation>
            <numerusform>%Ln group was found by its tags alone.</numerusform>
            <numerusform>%Ln groups were found by their tags alone.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>epr::vfd::Scrubber</name>
    <message numerus="yes">
        <source>%n difference(s)</source>
        <translation>
            <numerusform>%n difference</numerusform>
            <numerusform>%n differences</numerusform>
        </translation>
    </message>
</context>
</TS>
