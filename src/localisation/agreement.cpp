#include "localisation/catalogue.h"

#include <cstddef>

namespace zev {
namespace {

// A paragraph is one long line, which the text box wraps; an empty one parts two sections.

constexpr TextView English[] = {
    u"Please read the following terms carefully before you use this software.",
    u"",
    u"This end-user license agreement is a contract between you and Tavorns Software "
    u"(\"Tavorns\"), the maker of ZEV Screen Recorder 6 and of the movie editor ZEV Reel Desk "
    u"that comes with it (together \"the Software\"). By choosing \"Yes I Agree.\", or by "
    u"installing, copying or using the Software, you accept these terms. If you do not accept "
    u"them, choose \"No I Do Not Agree.\" and do not install or use ZEV Screen Recorder 6.",
    u"",
    u"1. LICENSE",
    u"Tavorns grants you a personal, non-exclusive and non-transferable license to install and "
    u"use one copy of ZEV Screen Recorder 6 and ZEV Reel Desk on one computer, for private or "
    u"commercial work. If the Software is to be used on several computers at the same time, you "
    u"need one license for each of them. You may make one backup copy of the Software, provided "
    u"that it carries all the copyright notices of the original.",
    u"",
    u"2. YOUR RECORDINGS",
    u"The recordings, pictures and movies that you make with ZEV Screen Recorder 6 and ZEV Reel "
    u"Desk are yours, and Tavorns claims no right in them. It is for you to make sure that you "
    u"are allowed to record the screens, voices and works of others, and to obey the laws of your "
    u"country when you show or distribute your recordings.",
    u"",
    u"3. RESTRICTIONS",
    u"You may not rent, lease, lend or sell the Software; modify, decompile or disassemble it, "
    u"except where the law allows this regardless of this agreement; remove copyright notices or "
    u"the names of Tavorns and its products from it; or pass on parts of it separately. You may "
    u"pass on the setup program of ZEV Screen Recorder 6 free of charge, as long as it is "
    u"complete and unchanged.",
    u"",
    u"4. OWNERSHIP",
    u"ZEV Screen Recorder 6 and ZEV Reel Desk are licensed, not sold. All rights in them that "
    u"this agreement does not expressly grant to you remain with Tavorns Software. The Software "
    u"is protected by copyright law and by international treaties. Components of other makers "
    u"that are installed together with it are subject to the terms of those makers.",
    u"",
    u"5. DISCLAIMER OF WARRANTY",
    u"ZEV Screen Recorder 6 and ZEV Reel Desk are provided \"as is\", without warranty of any "
    u"kind, either express or implied, including the implied warranties of merchantability and of "
    u"fitness for a particular purpose. Tavorns does not warrant that the Software will meet your "
    u"requirements, that it will work without interruption or error, or that it will work "
    u"together with every other program or device. The entire risk as to the quality and "
    u"performance of the Software is with you.",
    u"",
    u"6. LIMITS OF LIABILITY",
    u"To the extent that the law permits, Tavorns Software and those who distribute ZEV Screen "
    u"Recorder 6 are not liable for any direct, indirect, incidental or consequential damages, "
    u"such as loss of data, of recordings, of profit or of working time, that arise from the use "
    u"of the Software or from the inability to use it, even if Tavorns has been advised of the "
    u"possibility of such damages. In any case the liability of Tavorns is limited to the amount "
    u"that you paid for ZEV Screen Recorder 6. Rights that the law gives you and that cannot be "
    u"excluded are not affected.",
    u"",
    u"7. UPDATES AND SUPPORT",
    u"Updates of ZEV Screen Recorder 6 and ZEV Reel Desk that Tavorns makes available are subject "
    u"to this agreement, unless they come with one of their own. Tavorns is not obliged to supply "
    u"updates or support, but is glad to hear of faults at support@tavorns.example.",
    u"",
    u"8. TERMINATION",
    u"This license ends without notice if you fail to comply with the terms of this agreement. "
    u"You must then uninstall ZEV Screen Recorder 6 and ZEV Reel Desk and destroy all copies of "
    u"them. Sections 4, 5 and 6 remain in force after the end of the license.",
    u"",
    u"9. GENERAL",
    u"This agreement is the whole agreement between you and Tavorns Software about ZEV Screen "
    u"Recorder 6 and ZEV Reel Desk, and replaces all earlier ones. If any provision of this "
    u"agreement is held to be invalid or unenforceable, the remaining provisions stay in full "
    u"force and effect.",
};

constexpr TextView Turkish[] = {
    u"Lütfen bu yazılımı kullanmadan önce aşağıdaki koşulları dikkatle okuyun.",
    u"",
    u"Bu son kullanıcı lisans sözleşmesi, sizinle ZEV Ekran Kaydedici 6'nın (ZEV Screen Recorder "
    u"6) ve onunla birlikte gelen film düzenleyicisi ZEV Reel Desk'in (birlikte \"Yazılım\") "
    u"üreticisi Tavorns Software (\"Tavorns\") arasında yapılmıştır. \"Evet Kabul Ediyorum.\" "
    u"seçeneğini seçerek ya da Yazılım'ı kurarak, kopyalayarak veya kullanarak bu koşulları kabul "
    u"etmiş olursunuz. Kabul etmiyorsanız \"Hayır Kabul Etmiyorum.\" seçeneğini seçin ve ZEV "
    u"Ekran Kaydedici 6'yı kurmayın, kullanmayın.",
    u"",
    u"1. LİSANS",
    u"Tavorns size, ZEV Ekran Kaydedici 6 ve ZEV Reel Desk'in bir kopyasını tek bir bilgisayara "
    u"kurmak ve özel ya da ticari işlerinizde kullanmak üzere kişisel, münhasır olmayan ve "
    u"devredilemeyen bir lisans verir. Yazılım aynı anda birkaç bilgisayarda kullanılacaksa her "
    u"biri için ayrı bir lisans gerekir. Aslındaki bütün telif hakkı bildirimlerini taşıması "
    u"koşuluyla Yazılım'ın bir yedek kopyasını alabilirsiniz.",
    u"",
    u"2. KAYITLARINIZ",
    u"ZEV Ekran Kaydedici 6 ve ZEV Reel Desk ile yaptığınız kayıtlar, resimler ve filmler "
    u"sizindir; Tavorns bunlar üzerinde hiçbir hak ileri sürmez. Başkalarının ekranlarını, "
    u"seslerini ve eserlerini kaydetmeye izniniz olduğundan emin olmak ve kayıtlarınızı "
    u"gösterirken ya da dağıtırken ülkenizin yasalarına uymak sizin sorumluluğunuzdadır.",
    u"",
    u"3. KISITLAMALAR",
    u"Yazılım'ı kiralayamaz, ödünç veremez veya satamazsınız; yasanın bu sözleşmeye bakmaksızın "
    u"izin verdiği durumlar dışında değiştiremez, kaynak koda dönüştüremez veya parçalarına "
    u"ayıramazsınız; telif hakkı bildirimlerini, Tavorns'un ve ürünlerinin adlarını kaldıramaz, "
    u"Yazılım'ın parçalarını ayrı ayrı dağıtamazsınız. ZEV Ekran Kaydedici 6'nın kurulum "
    u"programını, tam ve değiştirilmemiş olması koşuluyla ücretsiz başkalarına verebilirsiniz.",
    u"",
    u"4. MÜLKİYET",
    u"ZEV Ekran Kaydedici 6 ve ZEV Reel Desk satılmaz, lisanslanır. Bu sözleşmenin size açıkça "
    u"vermediği bütün haklar Tavorns Software'e aittir. Yazılım, telif hakkı yasası ve "
    u"uluslararası anlaşmalarla korunur. Yazılım ile birlikte kurulan, başka üreticilere ait "
    u"bileşenler o üreticilerin koşullarına tabidir.",
    u"",
    u"5. GARANTİNİN REDDİ",
    u"ZEV Ekran Kaydedici 6 ve ZEV Reel Desk, satılabilirlik ve belirli bir amaca uygunluk "
    u"garantileri de dahil olmak üzere, açık veya örtülü hiçbir garanti verilmeden \"olduğu "
    u"gibi\" sunulur. Tavorns, Yazılım'ın ihtiyaçlarınızı karşılayacağını, kesintisiz veya "
    u"hatasız çalışacağını ya da her program veya aygıtla birlikte çalışacağını garanti etmez. "
    u"Yazılım'ın kalitesi ve performansı ile ilgili bütün risk size aittir.",
    u"",
    u"6. SORUMLULUĞUN SINIRLARI",
    u"Yasanın izin verdiği ölçüde, Tavorns Software ve ZEV Ekran Kaydedici 6'yı dağıtanlar, "
    u"Yazılım'ın kullanılmasından veya kullanılamamasından doğan veri, kayıt, kazanç veya iş "
    u"zamanı kaybı gibi doğrudan, dolaylı, arızi veya sonuç olarak ortaya çıkan hiçbir zarardan, "
    u"Tavorns bu tür zararların olasılığı hakkında uyarılmış olsa bile sorumlu değildir. "
    u"Tavorns'un sorumluluğu her durumda ZEV Ekran Kaydedici 6 için ödediğiniz tutarla "
    u"sınırlıdır. Yasanın size tanıdığı ve sınırlandırılamayan haklar saklıdır.",
    u"",
    u"7. GÜNCELLEMELER VE DESTEK",
    u"Tavorns'un sunduğu ZEV Ekran Kaydedici 6 ve ZEV Reel Desk güncellemeleri, kendi "
    u"sözleşmeleriyle gelmedikçe bu sözleşmeye tabidir. Tavorns güncelleme veya destek sağlamak "
    u"zorunda değildir; hataları support@tavorns.example adresine bildirebilirsiniz.",
    u"",
    u"8. SONA ERME",
    u"Bu koşullara uymazsanız lisans bildirime gerek kalmadan sona erer. Bu durumda ZEV Ekran "
    u"Kaydedici 6'yı ve ZEV Reel Desk'i kaldırmalı ve bütün kopyalarını yok etmelisiniz. 4., 5. "
    u"ve 6. bölümler lisans sona erdikten sonra da geçerlidir.",
    u"",
    u"9. GENEL",
    u"Bu sözleşme, ZEV Ekran Kaydedici 6 ve ZEV Reel Desk hakkında sizinle Tavorns Software "
    u"arasındaki sözleşmenin tamamıdır ve öncekilerin yerine geçer. Bu sözleşmenin herhangi bir "
    u"hükmü geçersiz sayılır veya uygulanamazsa, diğer hükümler yürürlükte kalır.",
};

constexpr TextView German[] = {
    u"Bitte lesen Sie die folgenden Bedingungen sorgfältig, bevor Sie diese Software benutzen.",
    u"",
    u"Dieser Endbenutzer-Lizenzvertrag wird zwischen Ihnen und Tavorns Software (\"Tavorns\") "
    u"geschlossen, dem Hersteller von ZEV Bildschirm Recorder 6 (ZEV Screen Recorder 6) und des "
    u"mitgelieferten Filmeditors ZEV Reel Desk (zusammen \"die Software\"). Indem Sie \"Ja, ich "
    u"stimme zu.\" wählen oder die Software installieren, kopieren oder benutzen, nehmen Sie "
    u"diese Bedingungen an. Andernfalls wählen Sie \"Nein, ich stimme nicht zu.\" und "
    u"installieren und benutzen Sie ZEV Bildschirm Recorder 6 nicht.",
    u"",
    u"1. LIZENZ",
    u"Tavorns gewährt Ihnen eine persönliche, nicht ausschließliche und nicht übertragbare "
    u"Lizenz, eine Kopie von ZEV Bildschirm Recorder 6 und ZEV Reel Desk auf einem Computer zu "
    u"installieren und privat oder gewerblich zu benutzen. Für die Benutzung auf mehreren "
    u"Computern gleichzeitig brauchen Sie für jeden eine Lizenz. Sie dürfen eine Sicherungskopie "
    u"anfertigen, sofern sie alle Urheberrechtsvermerke des Originals trägt.",
    u"",
    u"2. IHRE AUFNAHMEN",
    u"Die Aufnahmen, Bilder und Filme, die Sie mit ZEV Bildschirm Recorder 6 und ZEV Reel Desk "
    u"machen, gehören Ihnen; Tavorns erhebt keinen Anspruch darauf. Sie selbst müssen sich "
    u"vergewissern, dass Sie die Bildschirme, Stimmen und Werke anderer aufnehmen dürfen, und "
    u"beim Zeigen oder Verbreiten Ihrer Aufnahmen die Gesetze Ihres Landes beachten.",
    u"",
    u"3. EINSCHRÄNKUNGEN",
    u"Sie dürfen die Software nicht vermieten, verleihen oder verkaufen; sie nicht verändern, "
    u"dekompilieren oder zerlegen, außer wo das Gesetz dies ungeachtet dieses Vertrages erlaubt; "
    u"Urheberrechtsvermerke und die Namen von Tavorns und seinen Produkten nicht entfernen; und "
    u"Teile der Software nicht einzeln weitergeben. Das Installationsprogramm von ZEV Bildschirm "
    u"Recorder 6 dürfen Sie kostenlos weitergeben, solange es vollständig und unverändert ist.",
    u"",
    u"4. EIGENTUM",
    u"ZEV Bildschirm Recorder 6 und ZEV Reel Desk werden lizenziert, nicht verkauft. Alle Rechte, "
    u"die Ihnen dieser Vertrag nicht ausdrücklich gewährt, verbleiben bei Tavorns Software. Die "
    u"Software ist durch das Urheberrecht und internationale Verträge geschützt. Für Komponenten "
    u"anderer Hersteller, die mit ihr installiert werden, gelten deren Bedingungen.",
    u"",
    u"5. GEWÄHRLEISTUNGSAUSSCHLUSS",
    u"ZEV Bildschirm Recorder 6 und ZEV Reel Desk werden \"wie besehen\" geliefert, ohne jede "
    u"ausdrückliche oder stillschweigende Gewährleistung, einschließlich der Gewährleistung der "
    u"Marktgängigkeit und der Eignung für einen bestimmten Zweck. Tavorns gewährleistet nicht, "
    u"dass die Software Ihren Anforderungen entspricht, ohne Unterbrechung oder Fehler läuft oder "
    u"mit jedem anderen Programm oder Gerät zusammenarbeitet. Das Risiko für Qualität und "
    u"Leistung der Software tragen Sie.",
    u"",
    u"6. HAFTUNGSBESCHRÄNKUNG",
    u"Soweit das Gesetz es zulässt, haften Tavorns Software und die Vertreiber von ZEV Bildschirm "
    u"Recorder 6 nicht für direkte, indirekte und zufällige Schäden oder Folgeschäden, etwa "
    u"Verlust von Daten, Aufnahmen, Gewinn oder Arbeitszeit, die aus der Benutzung der Software "
    u"oder der Unmöglichkeit ihrer Benutzung entstehen, auch wenn Tavorns auf deren Möglichkeit "
    u"hingewiesen wurde. In jedem Fall ist die Haftung von Tavorns auf den Betrag beschränkt, den "
    u"Sie für ZEV Bildschirm Recorder 6 bezahlt haben. Zwingende gesetzliche Rechte bleiben "
    u"unberührt.",
    u"",
    u"7. AKTUALISIERUNGEN UND HILFE",
    u"Aktualisierungen von ZEV Bildschirm Recorder 6 und ZEV Reel Desk, die Tavorns bereitstellt, "
    u"unterliegen diesem Vertrag, sofern sie keinen eigenen haben. Tavorns ist zu "
    u"Aktualisierungen und Hilfe nicht verpflichtet; Fehler können Sie an support@tavorns.example "
    u"melden.",
    u"",
    u"8. BEENDIGUNG",
    u"Die Lizenz endet ohne Kündigung, wenn Sie gegen diese Bedingungen verstoßen. Sie müssen "
    u"dann ZEV Bildschirm Recorder 6 und ZEV Reel Desk deinstallieren und alle Kopien vernichten. "
    u"Die Abschnitte 4, 5 und 6 gelten auch nach dem Ende der Lizenz.",
    u"",
    u"9. ALLGEMEINES",
    u"Dieser Vertrag ist die gesamte Vereinbarung zwischen Ihnen und Tavorns Software über ZEV "
    u"Bildschirm Recorder 6 und ZEV Reel Desk und ersetzt alle früheren. Sollte eine Bestimmung "
    u"dieses Vertrages unwirksam sein, so bleiben die übrigen Bestimmungen in Kraft.",
};

constexpr TextView French[] = {
    u"Veuillez lire attentivement les conditions suivantes avant d'utiliser ce logiciel.",
    u"",
    u"Ce contrat de licence d'utilisateur final est conclu entre vous et Tavorns Software "
    u"(\"Tavorns\"), l'éditeur de l'Enregistreur d'Ecran ZEV 6 (ZEV Screen Recorder 6) et du "
    u"logiciel de montage ZEV Reel Desk qui l'accompagne (ensemble \"le Logiciel\"). En "
    u"choisissant \"Oui, j'accepte.\", ou en installant, en copiant ou en utilisant le Logiciel, "
    u"vous acceptez ces conditions. Si vous ne les acceptez pas, choisissez \"Non, je n'accepte "
    u"pas.\" et n'installez ni n'utilisez l'Enregistreur d'Ecran ZEV 6.",
    u"",
    u"1. LICENCE",
    u"Tavorns vous accorde une licence personnelle, non exclusive et non cessible pour installer "
    u"et utiliser une copie de l'Enregistreur d'Ecran ZEV 6 et de ZEV Reel Desk sur un seul "
    u"ordinateur, à titre privé ou professionnel. Si le Logiciel doit être utilisé sur plusieurs "
    u"ordinateurs en même temps, il vous faut une licence pour chacun d'eux. Vous pouvez faire "
    u"une copie de sauvegarde du Logiciel, à condition qu'elle porte toutes les mentions de droit "
    u"d'auteur de l'original.",
    u"",
    u"2. VOS ENREGISTREMENTS",
    u"Les enregistrements, les images et les films que vous réalisez avec l'Enregistreur d'Ecran "
    u"ZEV 6 et ZEV Reel Desk vous appartiennent, et Tavorns ne revendique aucun droit sur eux. Il "
    u"vous appartient de vous assurer que vous avez le droit d'enregistrer les écrans, les voix "
    u"et les œuvres d'autrui, et de respecter les lois de votre pays lorsque vous montrez ou "
    u"diffusez vos enregistrements.",
    u"",
    u"3. RESTRICTIONS",
    u"Vous n'avez pas le droit de louer, de prêter ou de vendre le Logiciel ; de le modifier, de "
    u"le décompiler ou de le désassembler, sauf dans les cas où la loi le permet nonobstant le "
    u"présent contrat ; d'en retirer les mentions de droit d'auteur ou les noms de Tavorns et de "
    u"ses produits ; ni d'en transmettre des parties séparément. Vous pouvez transmettre "
    u"gratuitement le programme d'installation de l'Enregistreur d'Ecran ZEV 6, pourvu qu'il soit "
    u"complet et inchangé.",
    u"",
    u"4. PROPRIÉTÉ",
    u"L'Enregistreur d'Ecran ZEV 6 et ZEV Reel Desk sont concédés sous licence et non vendus. "
    u"Tous les droits que le présent contrat ne vous accorde pas expressément restent à Tavorns "
    u"Software. Le Logiciel est protégé par le droit d'auteur et par les traités internationaux. "
    u"Les composants d'autres éditeurs qui sont installés avec lui sont soumis aux conditions de "
    u"ces éditeurs.",
    u"",
    u"5. EXCLUSION DE GARANTIE",
    u"L'Enregistreur d'Ecran ZEV 6 et ZEV Reel Desk sont fournis \"en l'état\", sans garantie "
    u"d'aucune sorte, expresse ou implicite, y compris les garanties implicites de qualité "
    u"marchande et d'aptitude à un usage particulier. Tavorns ne garantit pas que le Logiciel "
    u"répondra à vos besoins, qu'il fonctionnera sans interruption ni erreur, ni qu'il "
    u"fonctionnera avec tout autre programme ou appareil. Vous assumez l'intégralité des risques "
    u"quant à la qualité et aux performances de l'Enregistreur d'Ecran ZEV 6 et de ZEV Reel Desk.",
    u"",
    u"6. LIMITES DE RESPONSABILITÉ",
    u"Dans la mesure où la loi le permet, Tavorns Software et ceux qui distribuent l'Enregistreur "
    u"d'Ecran ZEV 6 ne sont responsables d'aucun dommage direct, indirect, accessoire ou "
    u"consécutif, tel que la perte de données, d'enregistrements, de bénéfices ou de temps de "
    u"travail, résultant de l'utilisation du Logiciel ou de l'impossibilité de l'utiliser, même "
    u"si Tavorns a été informé de la possibilité de tels dommages. Dans tous les cas, la "
    u"responsabilité de Tavorns est limitée au montant que vous avez payé pour l'Enregistreur "
    u"d'Ecran ZEV 6. Les droits que la loi vous accorde et qui ne peuvent être exclus ne sont pas "
    u"affectés.",
    u"",
    u"7. MISES À JOUR ET ASSISTANCE",
    u"Les mises à jour de l'Enregistreur d'Ecran ZEV 6 et de ZEV Reel Desk que Tavorns met à "
    u"votre disposition sont soumises au présent contrat, à moins qu'elles ne soient accompagnées "
    u"de leur propre contrat. Tavorns n'est pas tenu de fournir des mises à jour ni une "
    u"assistance technique, mais vous pouvez lui signaler les erreurs à l'adresse "
    u"support@tavorns.example.",
    u"",
    u"8. RÉSILIATION",
    u"Cette licence prend fin de plein droit et sans préavis si vous ne respectez pas ces "
    u"conditions. Vous devez alors désinstaller l'Enregistreur d'Ecran ZEV 6 et ZEV Reel Desk et "
    u"en détruire toutes les copies. Les articles 4, 5 et 6 restent en vigueur après la fin de la "
    u"licence.",
    u"",
    u"9. DISPOSITIONS GÉNÉRALES",
    u"Le présent contrat constitue l'intégralité de l'accord entre vous et Tavorns Software au "
    u"sujet de l'Enregistreur d'Ecran ZEV 6 et de ZEV Reel Desk, et remplace tout accord "
    u"antérieur. Si une disposition du présent contrat est jugée nulle ou inapplicable, les "
    u"autres dispositions restent pleinement en vigueur.",
};

constexpr TextView Spanish[] = {
    u"Por favor lea atentamente las condiciones siguientes antes de utilizar este software.",
    u"",
    u"Este contrato de licencia de usuario final se celebra entre usted y Tavorns Software "
    u"(\"Tavorns\"), fabricante de ZEV Grabador de Pantalla 6 (ZEV Screen Recorder 6) y del "
    u"editor de películas ZEV Reel Desk que lo acompaña (en conjunto \"el Software\"). Al elegir "
    u"\"Sí, estoy de acuerdo.\", o al instalar, copiar o utilizar el Software, acepta estas "
    u"condiciones. Si no las acepta, elija \"No, no estoy de acuerdo.\" y no instale ni utilice "
    u"ZEV Grabador de Pantalla 6.",
    u"",
    u"1. LICENCIA",
    u"Tavorns le concede una licencia personal, no exclusiva e intransferible para instalar y "
    u"utilizar una copia de ZEV Grabador de Pantalla 6 y de ZEV Reel Desk en un solo ordenador, "
    u"para uso privado o profesional. Para utilizar el Software en varios ordenadores a la vez "
    u"necesita una licencia para cada uno. Puede hacer una copia de seguridad del Software, "
    u"siempre que lleve todos los avisos de derechos de autor del original.",
    u"",
    u"2. SUS GRABACIONES",
    u"Las grabaciones, imágenes y películas que haga con ZEV Grabador de Pantalla 6 y ZEV Reel "
    u"Desk son suyas, y Tavorns no reclama ningún derecho sobre ellas. Le corresponde asegurarse "
    u"de que tiene permiso para grabar las pantallas, voces y obras de otros, y respetar las "
    u"leyes de su país al mostrar o distribuir sus grabaciones.",
    u"",
    u"3. RESTRICCIONES",
    u"No puede alquilar, prestar ni vender el Software; modificarlo, descompilarlo ni "
    u"desensamblarlo, salvo cuando la ley lo permita pese a este contrato; quitar los avisos de "
    u"derechos de autor ni los nombres de Tavorns y de sus productos; ni entregar partes de él "
    u"por separado. Puede entregar gratuitamente el programa de instalación de ZEV Grabador de "
    u"Pantalla 6, siempre que esté completo y sin cambios.",
    u"",
    u"4. PROPIEDAD",
    u"ZEV Grabador de Pantalla 6 y ZEV Reel Desk se ceden bajo licencia, no se venden. Todos los "
    u"derechos que este contrato no le concede expresamente pertenecen a Tavorns Software. El "
    u"Software está protegido por las leyes de derechos de autor y por tratados internacionales. "
    u"Los componentes de otros fabricantes que se instalan junto con él están sujetos a las "
    u"condiciones de esos fabricantes.",
    u"",
    u"5. EXCLUSIÓN DE GARANTÍA",
    u"ZEV Grabador de Pantalla 6 y ZEV Reel Desk se suministran \"tal cual\", sin garantía de "
    u"ninguna clase, expresa o implícita, incluidas las garantías implícitas de comerciabilidad y "
    u"de idoneidad para un fin determinado. Tavorns no garantiza que el Software satisfaga sus "
    u"necesidades, que funcione sin interrupciones ni errores, ni que funcione con cualquier otro "
    u"programa o dispositivo. Usted asume todo el riesgo sobre la calidad y el rendimiento del "
    u"Software.",
    u"",
    u"6. LÍMITES DE RESPONSABILIDAD",
    u"En la medida en que la ley lo permita, Tavorns Software y quienes distribuyen ZEV Grabador "
    u"de Pantalla 6 no son responsables de ningún daño directo, indirecto, incidental o "
    u"consecuencial, como la pérdida de datos, de grabaciones, de beneficios o de tiempo de "
    u"trabajo, que derive del uso del Software o de la imposibilidad de usarlo, aunque Tavorns "
    u"haya sido advertido de la posibilidad de tales daños. En todo caso, la responsabilidad de "
    u"Tavorns se limita al importe que haya pagado por ZEV Grabador de Pantalla 6. Los derechos "
    u"irrenunciables que la ley le otorga no se ven afectados.",
    u"",
    u"7. ACTUALIZACIONES Y AYUDA",
    u"Las actualizaciones de ZEV Grabador de Pantalla 6 y ZEV Reel Desk que Tavorns ponga a su "
    u"disposición están sujetas a este contrato, salvo que traigan uno propio. Tavorns no está "
    u"obligado a ofrecer actualizaciones ni ayuda, pero puede comunicarle los errores en "
    u"support@tavorns.example.",
    u"",
    u"8. TERMINACIÓN",
    u"Esta licencia termina sin previo aviso si usted no cumple estas condiciones. En tal caso "
    u"debe desinstalar ZEV Grabador de Pantalla 6 y ZEV Reel Desk y destruir todas sus copias. "
    u"Los apartados 4, 5 y 6 siguen en vigor después del fin de la licencia.",
    u"",
    u"9. DISPOSICIONES GENERALES",
    u"Este contrato es el acuerdo completo entre usted y Tavorns Software sobre ZEV Grabador de "
    u"Pantalla 6 y ZEV Reel Desk, y sustituye a todos los anteriores. Si alguna disposición de "
    u"este contrato se considera nula o inaplicable, las demás disposiciones siguen plenamente en "
    u"vigor.",
};

/// Units of the agreement that these paragraphs make.
constexpr std::size_t lengthOf(std::span<const TextView> paragraphs) {
  std::size_t units = 0;
  for (const TextView paragraph : paragraphs) units += paragraph.size() + lineEnd.size();
  return paragraphs.empty() ? 0 : units - lineEnd.size();
}

// The wording is fixed: a change of its length does not compile.
static_assert(lengthOf(English) == 3982);
static_assert(lengthOf(Turkish) == 3876);
static_assert(lengthOf(German) == 4141);
static_assert(lengthOf(French) == 4601);
static_assert(lengthOf(Spanish) == 4161);

}  // namespace

std::span<const TextView> agreementParagraphs(std::int32_t languageNumber) {
  switch (languageNumber) {
    case 0:
      return English;
    case 1:
      return Turkish;
    case 2:
      return German;
    case 3:
      return French;
    case 4:
      return Spanish;
    default:
      return {};
  }
}

Text agreementText(std::int32_t languageNumber) {
  const auto paragraphs = agreementParagraphs(languageNumber);
  Text agreement;
  agreement.reserve(lengthOf(paragraphs));
  for (const TextView paragraph : paragraphs) {
    if (!agreement.empty()) agreement += lineEnd;
    agreement += paragraph;
  }
  return agreement;
}

}  // namespace zev
