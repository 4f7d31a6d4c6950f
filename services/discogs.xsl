<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: GPL-3.0-or-later -->
<!--
  Answers of Discogs: the results of a search, or the full record of one release. The full record is loaded over its
  hit, and pictures are added to those of the hit: hits give small ones only.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:exsl="http://exslt.org/common"
                exclude-result-prefixes="exsl">
  <xsl:output method="xml" encoding="UTF-8"/>

  <xsl:variable name="digits" select="'0123456789'"/>
  <xsl:variable name="upper" select="'ABCDEFGHIJKLMNOPQRSTUVWXYZ'"/>
  <!-- What holds other media, and what is no disc however many there are. -->
  <xsl:variable name="containers" select="'|Box Set|All Media|'"/>
  <xsl:variable name="noDiscs" select="'|Box Set|All Media|File|Memory Stick|'"/>
  <xsl:variable name="sided"
                select="'|Vinyl|Cassette|Microcassette|Flexi-disc|Lathe Cut|Acetate|Shellac|Reel-To-Reel|'"/>

  <!-- Of the lists that are collected first: credits that say the same, and the tracks of one disc. -->
  <xsl:key name="credits" match="Credit" use="concat(@musician, '|', @credit)"/>
  <xsl:key name="discs" match="Row" use="concat(@medium, '|', @disc)"/>

  <xsl:template match="/">
    <SearchResults>
      <!-- A search can give artists, labels and masters as well. -->
      <xsl:apply-templates select="Data/results/*[type = 'release']" mode="hit"/>
      <xsl:apply-templates select="Data[id and title and not(results)]" mode="record"/>
    </SearchResults>
  </xsl:template>

  <!-- An attribute, unless there is nothing to say: an empty one would empty the field. A null comes as its name. -->
  <xsl:template name="attribute">
    <xsl:param name="name"/>
    <xsl:param name="value"/>
    <xsl:if test="normalize-space($value) != '' and $value != 'null'">
      <xsl:attribute name="{$name}"><xsl:value-of select="normalize-space($value)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- The number is asked for again in both: a record without it would clear it. -->
  <xsl:template name="identity">
    <xsl:attribute name="RELEASE_ID"><xsl:value-of select="id"/></xsl:attribute>
    <xsl:attribute name="DISCOGS_ID"><xsl:value-of select="id"/></xsl:attribute>
    <xsl:attribute name="DATAPROVIDER">Discogs</xsl:attribute>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'COUNTRY_TEXT'"/>
      <xsl:with-param name="value" select="country"/>
    </xsl:call-template>
    <xsl:if test="year &gt; 0">
      <xsl:attribute name="RELEASE_YEAR"><xsl:value-of select="year"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- Results of a search -->

  <xsl:template match="*" mode="hit">
    <Release>
      <xsl:call-template name="identity"/>
      <xsl:call-template name="split-title"/>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'RELEASE_TYPE'"/>
        <xsl:with-param name="value">
          <xsl:call-template name="found-medium"/>
        </xsl:with-param>
      </xsl:call-template>
      <!-- One text in old answers, a list in new ones. -->
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'LABEL'"/>
        <xsl:with-param name="value">
          <xsl:call-template name="label-name">
            <xsl:with-param name="name" select="(label[not(*)] | label/*)[1]"/>
          </xsl:call-template>
        </xsl:with-param>
      </xsl:call-template>
      <xsl:if test="catno != 'none'">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'CATALOG_NO'"/>
          <xsl:with-param name="value" select="catno"/>
        </xsl:call-template>
      </xsl:if>
      <!-- Among the barcodes are the matrix numbers. -->
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'EAN'"/>
        <xsl:with-param name="value">
          <xsl:for-each select="barcode/*[translate(., '0123456789 -', '') = ''
                                          and string-length(translate(., ' -', '')) &gt; 7]">
            <xsl:if test="position() = 1"><xsl:value-of select="translate(., ' -', '')"/></xsl:if>
          </xsl:for-each>
        </xsl:with-param>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'GENRE'"/>
        <xsl:with-param name="value" select="genre/*[1]"/>
      </xsl:call-template>
      <!-- A picture of nothing stands for a missing one. -->
      <xsl:if test="thumb != '' and thumb != 'null' and not(contains(thumb, 'spacer.gif'))">
        <Images>
          <Image type="thumb"><xsl:value-of select="thumb"/></Image>
        </Images>
      </xsl:if>
    </Release>
  </xsl:template>

  <!-- Artist and title come as one text. -->
  <xsl:template name="split-title">
    <xsl:choose>
      <xsl:when test="contains(title, ' - ')">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'ARTIST'"/>
          <xsl:with-param name="value">
            <xsl:call-template name="plain-name">
              <xsl:with-param name="name" select="normalize-space(substring-before(title, ' - '))"/>
              <xsl:with-param name="stars" select="true()"/>
            </xsl:call-template>
          </xsl:with-param>
        </xsl:call-template>
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
          <xsl:with-param name="value" select="substring-after(title, ' - ')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
          <xsl:with-param name="value" select="title"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- The list mixes media with what is said of them ("Vinyl", "LP", "Album"); the medium comes first. -->
  <xsl:template name="found-medium">
    <xsl:variable name="names" select="(formats/*/name | format[not(formats)]/*)
                                       [not(contains($containers, concat('|', ., '|')))]"/>
    <xsl:call-template name="media-type">
      <xsl:with-param name="name" select="$names[1]"/>
      <xsl:with-param name="isDual" select="format/* = 'DualDisc'"/>
    </xsl:call-template>
  </xsl:template>

  <!-- Names of artists, media and labels -->

  <!-- A name without the number that tells namesakes apart, "Name (2)", also within a list of names. In the titles of
       search results a star marks names that the release writes otherwise. -->
  <xsl:template name="plain-name">
    <xsl:param name="name"/>
    <xsl:param name="stars" select="false()"/>
    <xsl:param name="isFirst" select="true()"/>
    <xsl:variable name="word" select="substring-before(concat($name, ' '), ' ')"/>
    <xsl:variable name="rest" select="substring-after($name, ' ')"/>
    <xsl:variable name="comma" select="substring(',', 1, number(substring($word, string-length($word)) = ','))"/>
    <xsl:variable name="core" select="substring($word, 1, string-length($word) - string-length($comma))"/>
    <xsl:variable name="isNumber" select="not($isFirst) and string-length($core) &gt; 2 and starts-with($core, '(')
                                          and substring($core, string-length($core)) = ')'
                                          and translate($core, '()0123456789', '') = ''"/>
    <xsl:if test="not($isNumber)">
      <xsl:if test="not($isFirst)"><xsl:text> </xsl:text></xsl:if>
      <xsl:choose>
        <xsl:when test="$stars and string-length($core) &gt; 1 and substring($core, string-length($core)) = '*'">
          <xsl:value-of select="substring($core, 1, string-length($core) - 1)"/>
        </xsl:when>
        <xsl:otherwise><xsl:value-of select="$core"/></xsl:otherwise>
      </xsl:choose>
    </xsl:if>
    <xsl:value-of select="$comma"/>
    <xsl:choose>
      <xsl:when test="$rest = ''"/>
      <xsl:when test="string-length($rest) &gt; 500"> <!-- no name -->
        <xsl:value-of select="concat(' ', $rest)"/>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="plain-name">
          <xsl:with-param name="name" select="$rest"/>
          <xsl:with-param name="stars" select="$stars"/>
          <xsl:with-param name="isFirst" select="false()"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Several artists with the words between them. The plain name is taken and not its variant (`anv`), so that one
       artist has one name in the collection. -->
  <xsl:template name="artists">
    <xsl:param name="list"/>
    <xsl:for-each select="$list">
      <xsl:call-template name="plain-name">
        <xsl:with-param name="name" select="normalize-space(name)"/>
      </xsl:call-template>
      <xsl:if test="position() != last()">
        <xsl:choose>
          <xsl:when test="join = '' or join = ',' or join = 'null'">, </xsl:when>
          <xsl:otherwise><xsl:value-of select="concat(' ', normalize-space(join), ' ')"/></xsl:otherwise>
        </xsl:choose>
      </xsl:if>
    </xsl:for-each>
  </xsl:template>

  <!-- "Not On Label" stands for "there is none". -->
  <xsl:template name="label-name">
    <xsl:param name="name"/>
    <xsl:if test="not(starts-with($name, 'Not On Label'))">
      <xsl:call-template name="plain-name">
        <xsl:with-param name="name" select="normalize-space($name)"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <xsl:template name="media-type">
    <xsl:param name="name"/>
    <xsl:param name="isDual"/>
    <xsl:choose>
      <xsl:when test="$isDual">DualDisc</xsl:when>
      <xsl:when test="$name = 'CDr'">CD</xsl:when>
      <xsl:when test="$name = 'Flexi-disc' or $name = 'Lathe Cut' or $name = 'Acetate'">Vinyl</xsl:when>
      <xsl:when test="$name = 'Microcassette'">Cassette</xsl:when>
      <xsl:when test="$name = 'File' or $name = 'Memory Stick'">Digital</xsl:when>
      <xsl:when test="contains($name, 'DVD')">DVD</xsl:when>
      <xsl:when test="starts-with($name, 'Blu-ray')">Blu-ray</xsl:when>
      <xsl:otherwise><xsl:value-of select="$name"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- The full record -->

  <xsl:template match="Data" mode="record">
    <xsl:variable name="media">
      <xsl:for-each select="formats/*[not(contains($containers, concat('|', name, '|')))]">
        <ReleaseType>
          <xsl:call-template name="media-type">
            <xsl:with-param name="name" select="name"/>
            <xsl:with-param name="isDual" select="descriptions/* = 'DualDisc'"/>
          </xsl:call-template>
        </ReleaseType>
      </xsl:for-each>
    </xsl:variable>
    <xsl:variable name="types" select="exsl:node-set($media)/ReleaseType[. != '']"/>
    <xsl:variable name="broad" select="genres/*"/>
    <xsl:variable name="genres" select="$broad | styles/*[not(. = $broad)]"/>
    <xsl:variable name="discs"
                  select="sum(formats/*[not(contains($noDiscs, concat('|', name, '|')))]/qty[number(.) &gt; 0])"/>
    <xsl:variable name="releaseArtist">
      <xsl:call-template name="artists">
        <xsl:with-param name="list" select="artists/*"/>
      </xsl:call-template>
    </xsl:variable>
    <Release>
      <xsl:call-template name="identity"/>
      <xsl:call-template name="record-attributes">
        <xsl:with-param name="artist" select="$releaseArtist"/>
        <xsl:with-param name="medium" select="$types[1]"/>
        <xsl:with-param name="discs" select="$discs"/>
      </xsl:call-template>
      <xsl:if test="$genres">
        <Genres>
          <xsl:for-each select="$genres">
            <!-- Styles may stand before the genres in the answer. -->
            <xsl:sort select="number(boolean(parent::styles))" data-type="number"/>
            <Genre><xsl:value-of select="."/></Genre>
          </xsl:for-each>
        </Genres>
      </xsl:if>
      <xsl:if test="$types">
        <ReleaseTypes>
          <xsl:copy-of select="$types[not(. = preceding-sibling::ReleaseType)]"/>
        </ReleaseTypes>
      </xsl:if>
      <xsl:call-template name="labels"/>
      <xsl:call-template name="credits"/>
      <xsl:call-template name="tracks">
        <xsl:with-param name="several" select="$discs != 1"/>
        <xsl:with-param name="releaseArtist" select="string($releaseArtist)"/>
      </xsl:call-template>
      <xsl:call-template name="large-images"/>
    </Release>
  </xsl:template>

  <xsl:template name="record-attributes">
    <xsl:param name="artist"/>
    <xsl:param name="medium"/>
    <xsl:param name="discs"/>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST_ID'"/>
      <xsl:with-param name="value" select="artists/*[1]/id"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST'"/>
      <xsl:with-param name="value" select="$artist"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
      <xsl:with-param name="value" select="title"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TYPE'"/>
      <xsl:with-param name="value" select="$medium"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'LABEL'"/>
      <xsl:with-param name="value">
        <xsl:call-template name="label-name">
          <xsl:with-param name="name" select="labels/*[1]/name"/>
        </xsl:call-template>
      </xsl:with-param>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'CATALOG_NO'"/>
      <xsl:with-param name="value" select="labels/*/catno[. != '' and . != 'none' and . != 'null']"/>
    </xsl:call-template>
    <!-- Often as printed, with blanks between the groups of digits. -->
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'EAN'"/>
      <xsl:with-param name="value" select="translate(identifiers/*[type = 'Barcode']/value[. != '' and translate(., '0123456789 -&lt;&gt;', '') = ''],
                                        ' -&lt;&gt;', '')"/>
    </xsl:call-template>
    <!-- A day or month that is not known is 00. -->
    <xsl:if test="translate(released, $digits, '0000000000') = '0000-00-00' and not(contains(released, '-00'))">
      <xsl:attribute name="RELEASE_DATE"><xsl:value-of select="released"/></xsl:attribute>
    </xsl:if>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'GENRE'"/>
      <xsl:with-param name="value" select="genres/*[1]"/>
    </xsl:call-template>
    <xsl:if test="normalize-space(notes) != '' and notes != 'null'">
      <xsl:attribute name="NOTES">
        <xsl:call-template name="without-markup">
          <xsl:with-param name="text" select="notes"/>
        </xsl:call-template>
      </xsl:attribute>
    </xsl:if>
    <xsl:if test="$discs &gt; 0">
      <xsl:attribute name="NUMBEROFDISCS"><xsl:value-of select="$discs"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- Notes with links by name as that name, and without bold, italic and underlined. -->
  <xsl:template name="without-markup">
    <xsl:param name="text"/>
    <xsl:param name="tagsLeft" select="200"/> <!-- deeper calls would fail the whole transformation -->
    <xsl:choose>
      <xsl:when test="$tagsLeft &gt; 0 and contains($text, '[') and contains(substring-after($text, '['), ']')">
        <xsl:variable name="tag" select="substring-before(substring-after($text, '['), ']')"/>
        <xsl:value-of select="substring-before($text, '[')"/>
        <xsl:choose>
          <xsl:when test="starts-with($tag, 'a=') or starts-with($tag, 'l=')">
            <xsl:value-of select="substring-after($tag, '=')"/>
          </xsl:when>
          <xsl:when test="contains('|b|/b|i|/i|u|/u|/url|', concat('|', $tag, '|')) or starts-with($tag, 'url=')"/>
          <xsl:otherwise><xsl:value-of select="concat('[', $tag, ']')"/></xsl:otherwise>
        </xsl:choose>
        <xsl:call-template name="without-markup">
          <xsl:with-param name="text" select="substring-after(substring-after($text, '['), ']')"/>
          <xsl:with-param name="tagsLeft" select="$tagsLeft - 1"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="$text"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="labels">
    <xsl:variable name="names">
      <!-- A release with two numbers of one label names it twice. -->
      <xsl:for-each select="labels/*[not(name = preceding-sibling::*/name)]">
        <Label>
          <xsl:call-template name="label-name">
            <xsl:with-param name="name" select="name"/>
          </xsl:call-template>
        </Label>
      </xsl:for-each>
    </xsl:variable>
    <xsl:if test="exsl:node-set($names)/Label[. != '']">
      <Labels>
        <xsl:copy-of select="exsl:node-set($names)/Label[. != '']"/>
      </Labels>
    </xsl:if>
  </xsl:template>

  <!-- Credits of the release, then those of its tracks, each once. -->
  <xsl:template name="credits">
    <xsl:variable name="all">
      <xsl:apply-templates select="extraartists/*" mode="credit"/>
      <xsl:apply-templates select="tracklist//extraartists/*" mode="credit"/>
    </xsl:variable>
    <xsl:if test="exsl:node-set($all)/Credit">
      <Credits>
        <xsl:for-each select="exsl:node-set($all)/Credit">
          <xsl:if test="generate-id() = generate-id(key('credits', concat(@musician, '|', @credit))[1])">
            <xsl:copy-of select="."/>
          </xsl:if>
        </xsl:for-each>
      </Credits>
    </xsl:if>
  </xsl:template>

  <xsl:template match="*" mode="credit">
    <xsl:variable name="musician">
      <xsl:call-template name="plain-name">
        <xsl:with-param name="name" select="normalize-space(name)"/>
      </xsl:call-template>
    </xsl:variable>
    <xsl:if test="$musician != '' and $musician != 'null'">
      <xsl:choose>
        <xsl:when test="string-length(role) &lt; 300">
          <xsl:call-template name="few-roles">
            <xsl:with-param name="musician" select="string($musician)"/>
            <xsl:with-param name="text" select="normalize-space(role)"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:otherwise>
          <xsl:call-template name="roles">
            <xsl:with-param name="musician" select="string($musician)"/>
            <xsl:with-param name="text" select="normalize-space(role)"/>
          </xsl:call-template>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:if>
  </xsl:template>

  <!-- "Producer, Guitar [Lead, Rhythm]" are two credits: a comma within brackets belongs to its role. A long text is
       halved at a comma outside of brackets, since calls that are too deep would fail the whole transformation. -->
  <xsl:template name="roles">
    <xsl:param name="musician"/>
    <xsl:param name="text"/>
    <xsl:variable name="middle" select="floor(string-length($text) div 2)"/>
    <xsl:variable name="ahead" select="substring($text, 1, $middle)"/>
    <xsl:variable name="behind" select="substring($text, $middle + 1)"/>
    <xsl:variable name="upToComma" select="concat($ahead, substring-before($behind, ', '))"/>
    <xsl:variable name="bracket" select="substring(']', 1, number(string-length(translate($upToComma, '[', '')) &lt;
                                                                  string-length(translate($upToComma, ']', ''))))"/>
    <xsl:variable name="cut" select="concat($bracket, ', ')"/>
    <xsl:variable name="head" select="concat($ahead, substring-before($behind, $cut), $bracket)"/>
    <xsl:choose>
      <xsl:when test="string-length($text) &gt; 300 and contains($behind, $cut) and
                      string-length(translate($head, '[', '')) &gt;= string-length(translate($head, ']', ''))">
        <xsl:call-template name="roles">
          <xsl:with-param name="musician" select="$musician"/>
          <xsl:with-param name="text" select="$head"/>
        </xsl:call-template>
        <xsl:call-template name="roles">
          <xsl:with-param name="musician" select="$musician"/>
          <xsl:with-param name="text" select="substring-after($behind, $cut)"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="few-roles">
          <xsl:with-param name="musician" select="$musician"/>
          <xsl:with-param name="text" select="$text"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="few-roles">
    <xsl:param name="musician"/>
    <xsl:param name="text"/>
    <xsl:param name="begun" select="''"/>
    <xsl:param name="partsLeft" select="150"/>
    <xsl:variable name="role" select="concat($begun, substring-before(concat($text, ', '), ', '))"/>
    <xsl:variable name="rest" select="substring-after($text, ', ')"/>
    <xsl:variable name="isOpen"
                  select="string-length(translate($role, '[', '')) &lt; string-length(translate($role, ']', ''))"/>
    <xsl:choose>
      <xsl:when test="$rest = ''">
        <Credit musician="{$musician}" credit="{$role}"/>
      </xsl:when>
      <xsl:when test="$partsLeft = 0"> <!-- a bracket that is never closed -->
        <Credit musician="{$musician}" credit="{concat($begun, $text)}"/>
      </xsl:when>
      <xsl:when test="$isOpen">
        <xsl:call-template name="few-roles">
          <xsl:with-param name="musician" select="$musician"/>
          <xsl:with-param name="text" select="$rest"/>
          <xsl:with-param name="begun" select="concat($role, ', ')"/>
          <xsl:with-param name="partsLeft" select="$partsLeft - 1"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <Credit musician="{$musician}" credit="{$role}"/>
        <xsl:call-template name="few-roles">
          <xsl:with-param name="musician" select="$musician"/>
          <xsl:with-param name="text" select="$rest"/>
          <xsl:with-param name="partsLeft" select="$partsLeft - 1"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Tracks. The rows are collected with what their position tells of medium, disc and side. Then the discs are told
       apart, and the tracks are numbered within each by their order. -->
  <xsl:template name="tracks">
    <xsl:param name="several"/>
    <xsl:param name="releaseArtist"/>
    <xsl:variable name="collected">
      <xsl:apply-templates select="tracklist/*" mode="row">
        <xsl:with-param name="several" select="$several"/>
        <xsl:with-param name="isSided"
                        select="not(formats/*) or formats/*[contains($sided, concat('|', name, '|'))]"/>
        <xsl:with-param name="releaseArtist" select="$releaseArtist"/>
      </xsl:apply-templates>
    </xsl:variable>
    <xsl:variable name="rows" select="exsl:node-set($collected)/Row"/>
    <!-- With one kind of medium the number in the position is that of the disc. With CD1, CD2 and DVD1, or with records
         and a CD, discs are numbered in the order in which they come. -->
    <xsl:variable name="isMixed" select="$rows/@medium != $rows[1]/@medium"/>
    <xsl:if test="$rows">
      <Tracks>
        <xsl:for-each select="$rows[generate-id() = generate-id(key('discs', concat(@medium, '|', @disc))[1])]">
          <xsl:variable name="disc">
            <xsl:choose>
              <xsl:when test="$isMixed"><xsl:value-of select="position()"/></xsl:when>
              <xsl:otherwise><xsl:value-of select="@disc"/></xsl:otherwise>
            </xsl:choose>
          </xsl:variable>
          <xsl:for-each select="key('discs', concat(@medium, '|', @disc))">
            <Track TRACK_NO="{position()}" DISC_NO="{$disc}">
              <xsl:copy-of select="@TRACK_TITLE | @TRACK_ARTIST | @TRACK_DURATION_SEC | @SIDE"/>
            </Track>
          </xsl:for-each>
        </xsl:for-each>
      </Tracks>
    </xsl:if>
  </xsl:template>

  <!-- Headings are no tracks. Old answers do not mark them: they have neither a position nor a duration. -->
  <xsl:template match="*" mode="row">
    <xsl:param name="several"/>
    <xsl:param name="isSided"/>
    <xsl:param name="releaseArtist"/>
    <xsl:variable name="isHeading"
                  select="type_ = 'heading' or (not(type_) and normalize-space(concat(position, duration)) = '')"/>
    <xsl:variable name="first" select="normalize-space(sub_tracks/*[1]/position)"/>
    <!-- An index groups the movements of a work, which are tracks of their own, or names the parts of one track: then
         it has the position itself, or its parts are 3a and 3b, 3.1 and 3.2. -->
    <xsl:variable name="areParts"
                  select="position != '' or (contains($first, '.') and not($several)) or
                          ($first != '' and contains('abcdefghijklmnop', substring($first, string-length($first))))"/>
    <xsl:choose>
      <xsl:when test="$isHeading"/>
      <xsl:when test="sub_tracks/* and not($areParts)">
        <xsl:for-each select="sub_tracks/*">
          <xsl:call-template name="row">
            <xsl:with-param name="several" select="$several"/>
            <xsl:with-param name="isSided" select="$isSided"/>
            <xsl:with-param name="releaseArtist" select="$releaseArtist"/>
            <xsl:with-param name="title" select="concat(../../title, ': ', title)"/>
            <xsl:with-param name="artists" select="artists/* | ../../artists[not(current()/artists/*)]/*"/>
          </xsl:call-template>
        </xsl:for-each>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="row">
          <xsl:with-param name="several" select="$several"/>
          <xsl:with-param name="isSided" select="$isSided"/>
          <xsl:with-param name="releaseArtist" select="$releaseArtist"/>
          <xsl:with-param name="title" select="title"/>
          <xsl:with-param name="artists" select="artists/*"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="row">
    <xsl:param name="several"/>
    <xsl:param name="isSided"/>
    <xsl:param name="releaseArtist"/>
    <xsl:param name="title"/>
    <xsl:param name="artists"/>
    <xsl:variable name="artist">
      <xsl:call-template name="artists">
        <xsl:with-param name="list" select="$artists"/>
      </xsl:call-template>
    </xsl:variable>
    <Row>
      <xsl:call-template name="place">
        <xsl:with-param name="position" select="normalize-space((position[. != ''] | sub_tracks/*[1]/position)[1])"/>
        <xsl:with-param name="several" select="$several"/>
        <xsl:with-param name="isSided" select="$isSided"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_TITLE'"/>
        <xsl:with-param name="value" select="$title"/>
      </xsl:call-template>
      <xsl:if test="$artist != $releaseArtist">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'TRACK_ARTIST'"/>
          <xsl:with-param name="value" select="$artist"/>
        </xsl:call-template>
      </xsl:if>
      <xsl:call-template name="seconds">
        <xsl:with-param name="duration" select="normalize-space(duration)"/>
      </xsl:call-template>
    </Row>
  </xsl:template>

  <!-- A position is the medium with its number ("2-05", "CD2-3", "DVD-1", "LP1-A2", and "2.05" when there are several
       discs) before the track, which is a number or a side with or without one ("A1", "B", "AA2"). -->
  <xsl:template name="place">
    <xsl:param name="position"/>
    <xsl:param name="several"/>
    <xsl:param name="isSided"/>
    <xsl:variable name="beforeDash" select="substring-before($position, '-')"/>
    <xsl:variable name="beforeDot" select="substring-before($position, '.')"/>
    <xsl:variable name="prefix">
      <xsl:choose>
        <!-- "A-1" is a side. -->
        <xsl:when test="string-length($beforeDash) = 1 and contains($upper, $beforeDash)"/>
        <xsl:when test="$beforeDash != ''"><xsl:value-of select="$beforeDash"/></xsl:when>
        <xsl:when test="$several and $beforeDot != '' and translate($beforeDot, $digits, '') = ''">
          <xsl:value-of select="$beforeDot"/>
        </xsl:when>
      </xsl:choose>
    </xsl:variable>
    <xsl:variable name="track" select="substring($position, string-length($prefix) + 1
                                                            + number(string-length($prefix) &gt; 0))"/>
    <xsl:variable name="number" select="translate($prefix, translate($prefix, $digits, ''), '')"/>
    <xsl:variable name="letters" select="translate($track, translate($track, $upper, ''), '')"/>
    <xsl:variable name="side">
      <xsl:if test="$isSided and $letters != '' and string-length($letters) &lt; 3 and starts-with($track, $letters)
                    and translate(substring($track, string-length($letters) + 1, 1), '0123456789.-', '') = ''">
        <xsl:value-of select="$letters"/>
      </xsl:if>
    </xsl:variable>
    <xsl:attribute name="medium">
      <xsl:choose>
        <xsl:when test="not($several)"/>
        <xsl:when test="$prefix != ''">
          <xsl:value-of select="translate(translate($prefix, $digits, ''), ' ', '')"/>
        </xsl:when>
        <xsl:when test="$side != ''">side</xsl:when>
      </xsl:choose>
    </xsl:attribute>
    <xsl:attribute name="disc">
      <xsl:choose>
        <xsl:when test="$number &gt; 0"><xsl:value-of select="number($number)"/></xsl:when>
        <!-- Two sides make a disc. AA is the back of a single whose front is A. -->
        <xsl:when test="$several and $side != ''">
          <xsl:value-of select="floor(string-length(substring-before($upper, substring($side, 1, 1))) div 2) + 1"/>
        </xsl:when>
        <xsl:otherwise>1</xsl:otherwise>
      </xsl:choose>
    </xsl:attribute>
    <xsl:if test="$side != ''">
      <xsl:attribute name="SIDE"><xsl:value-of select="$side"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- "5:08", "62:10" or "1:02:10" -->
  <xsl:template name="seconds">
    <xsl:param name="duration"/>
    <xsl:variable name="afterFirst" select="substring-after($duration, ':')"/>
    <xsl:if test="translate($duration, '0123456789:', '') = '' and $afterFirst != ''">
      <xsl:variable name="sum">
        <xsl:choose>
          <xsl:when test="contains($afterFirst, ':')">
            <xsl:value-of select="substring-before($duration, ':') * 3600 + substring-before($afterFirst, ':') * 60
                                  + substring-after($afterFirst, ':')"/>
          </xsl:when>
          <xsl:otherwise><xsl:value-of select="substring-before($duration, ':') * 60 + $afterFirst"/></xsl:otherwise>
        </xsl:choose>
      </xsl:variable>
      <xsl:if test="$sum &gt; 0">
        <xsl:attribute name="TRACK_DURATION_SEC"><xsl:value-of select="$sum"/></xsl:attribute>
      </xsl:if>
    </xsl:if>
  </xsl:template>

  <!-- The main picture is the front; where none is marked as such, the first one is. Without a key there are no
       addresses. -->
  <xsl:template name="large-images">
    <xsl:variable name="pictures" select="images/*[uri != '' and uri != 'null']"/>
    <xsl:variable name="front" select="($pictures[type = 'primary'] | $pictures[not($pictures/type = 'primary')])[1]"/>
    <xsl:if test="$pictures">
      <Images>
        <Image type="large"><xsl:value-of select="$front/uri"/></Image>
        <xsl:for-each select="$pictures[uri != $front/uri][not(uri = preceding-sibling::*/uri)]">
          <Image type="other"><xsl:value-of select="uri"/></Image>
        </xsl:for-each>
      </Images>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
